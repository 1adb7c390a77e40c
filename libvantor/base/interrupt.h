// Interrupt: Ctrl-C during a pass.
#pragma once

namespace vantor {

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

    /// Whether SIGINT came since the scope began. Any thread, at the price of a memory read.
    bool requested() const;
};

} // namespace vantor
