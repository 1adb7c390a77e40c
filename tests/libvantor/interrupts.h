// Interrupts: what a test does around one.
#pragma once

#include "libvantor/base/interrupt.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>

namespace scripted {

/// While it lives, SIGINT is only counted.
class InterruptHandler {
  public:
    InterruptHandler() {
        counted = 0;
        struct sigaction ours = {};
        ours.sa_handler = count_one;
        sigaction(SIGINT, &ours, &old);
    }
    ~InterruptHandler() { sigaction(SIGINT, &old, nullptr); }
    InterruptHandler(const InterruptHandler &) = delete;
    InterruptHandler &operator=(const InterruptHandler &) = delete;

    int count() const { return counted; }

    /// Whether the handler of before is back.
    bool is_in_place() const {
        struct sigaction now;
        sigaction(SIGINT, nullptr, &now);
        return now.sa_handler == count_one;
    }

  private:
    static void count_one(int) { ++counted; }

    static inline std::atomic<int> counted = 0;
    struct sigaction old;
};

/// How often work asks whether it is interrupted.
template <class Work> long polls_of(const Work &work) {
    const vantor::InterruptAtPoll none(0);
    work();
    return none.polls();
}

/// Work on one thread asks at least so often, and ends as soon as it learns that it is interrupted.
template <class Work> void expect_prompt(long least_polls, const Work &work) {
    const InterruptHandler handler;
    const long polls = polls_of(work);
    EXPECT_GE(polls, least_polls);
    for (const long at : {1L, polls / 3, polls / 2, polls * 4 / 5, polls}) {
        const vantor::InterruptAtPoll interrupt(at);
        EXPECT_THROW(work(), vantor::Interrupted) << at << " of " << polls;
        EXPECT_EQ(interrupt.polls(), at);
    }
}

} // namespace scripted
