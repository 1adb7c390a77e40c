// An interrupt that comes while a pass reports its first diagnostic: before it has begun to work.
#pragma once

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace scripted {

/// Runs a pass whose first diagnostic is held up, in a pipe that is full, until the pass has put its handler of SIGINT
/// in place and the signal has come. Returns what it prints; empty, with a failure, if it does not listen by then.
template <class Work> std::string errors_when_interrupted_at_first_diagnostic(Work work) {
    struct sigaction ours = {};
    ours.sa_handler = [](int) {};
    struct sigaction old;
    sigaction(SIGINT, &ours, &old);

    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    const char filler = 0;
    while (write(ends[1], &filler, 1) == 1)
        ;
    fcntl(ends[1], F_SETFL, 0);
    const int error_stream = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);

    bool listens = false;
    std::string printed;
    std::thread other([&] {
        // Long enough for the busiest machine; it only ends the wait for what would never come.
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!listens && std::chrono::steady_clock::now() < end) {
            struct sigaction now;
            sigaction(SIGINT, nullptr, &now);
            listens = now.sa_handler != ours.sa_handler;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        std::raise(SIGINT);
        char byte = 0;
        while (read(ends[0], &byte, 1) == 1)
            if (byte != filler)
                printed += byte;
    });
    work();
    dup2(error_stream, STDERR_FILENO);
    close(error_stream);
    other.join();
    close(ends[0]);
    sigaction(SIGINT, &old, nullptr);
    EXPECT_TRUE(listens) << "the first diagnostic came before the pass listened";
    return listens ? printed : std::string();
}

} // namespace scripted
