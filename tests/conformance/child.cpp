// A child process and the pipe that it writes to.
#include "child.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <system_error>

namespace {

[[noreturn]] void be_the_child(int output, const std::function<void(const Child::Send &)> &work) {
    // No core files of crashes that are expected, and no child that outlives an interrupted parent.
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    prctl(PR_SET_PDEATHSIG, SIGKILL);

    work([output](std::string line) {
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
        line += '\n';
        // What the library printed comes before the line about it.
        std::cout.flush();
        std::fflush(nullptr);
        if (write(output, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
            _exit(1);
    });
    _exit(0);
}

} // namespace

std::string how_it_ended(int status) {
    if (WIFSIGNALED(status))
        return "ended by signal " + std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) + ")";
    return "ended the process with exit code " + std::to_string(WEXITSTATUS(status));
}

Child::Child(const std::function<void(const Send &)> &work) {
    int ends[2];
    std::cout.flush();
    std::fflush(nullptr);
    if (pipe2(ends, O_CLOEXEC) != 0 || (process = fork()) < 0)
        throw std::system_error(errno, std::generic_category(), "cannot start a process");
    if (process == 0) {
        close(ends[0]);
        be_the_child(ends[1], work);
    }
    close(ends[1]);
    input = ends[0];
}

Child::~Child() {
    close(input);
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

Child::Received Child::receive(std::string &line, int seconds) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::seconds(seconds);
    for (;;) {
        if (const std::size_t end = unread.find('\n'); end != std::string::npos) {
            line = unread.substr(0, end);
            unread.erase(0, end + 1);
            return Received::Line;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd wait{input, POLLIN, 0};
        const int ready = left > 0 ? poll(&wait, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return Received::TooLate;
        char piece[4096];
        const ssize_t count = read(input, piece, sizeof piece);
        if (count <= 0)
            return Received::End;
        unread.append(piece, static_cast<std::size_t>(count));
    }
}

std::string Child::how_it_ended() {
    int status = 0;
    waitpid(process, &status, 0);
    process = 0;
    return ::how_it_ended(status);
}
