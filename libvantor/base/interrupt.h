// Interrupt: Ctrl-C during a pass.
#pragma once

namespace vantor {

/// Thrown out of work whose unfinished result is discarded. Not a std::exception, so that no handler of errors catches
/// it.
struct Interrupted {};

/// While it lives, SIGINT is noted and then passed on to the handler that was there before, so that a script sees its
/// KeyboardInterrupt when the pass is over. Afterwards the old handler is back. Where SIGINT was ignored it still is.
/// Where it had the default action, the action follows when the scope ends.
///
/// One at a time in a process: scene calls never overlap.
class Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt &) = delete;
    Interrupt &operator=(const Interrupt &) = delete;

    /// Whether SIGINT came since the scope began. For work whose finished part is kept. Any thread may call it; it
    /// costs two memory reads.
    bool requested() const;

    /// Throws Interrupted if SIGINT came since the scope began. For work that is kept as a whole or not at all.
    void check() const {
        if (requested())
            throw Interrupted();
    }
};

/// For tests, in place of a clock: while it lives, SIGINT is raised in the middle of the work, by the call of
/// Interrupt::requested() with that number, counted from 1. One at a time in a process.
class InterruptAtPoll {
  public:
    /// With 0, calls are only counted.
    explicit InterruptAtPoll(long number);
    ~InterruptAtPoll();
    InterruptAtPoll(const InterruptAtPoll &) = delete;
    InterruptAtPoll &operator=(const InterruptAtPoll &) = delete;

    /// How many calls there have been.
    long polls() const;
};

} // namespace vantor
