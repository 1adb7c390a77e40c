// Runs groups of checks in child processes and prints what comes of them.
#pragma once

#include "check.h"

/// Each group runs in a child process of its own, which opens the library itself. A check that crashes, ends the
/// process or hangs fails by that, and a new child goes on with the next one, so that the closing line always comes.
class Runner {
  public:
    /// A check that takes longer than `seconds` fails.
    Runner(std::string library, int seconds);

    void run(const Group &group);

    /// Prints the closing line. Returns the exit code: 0 if all passed, 1 if any failed, 2 if the library cannot be
    /// opened.
    int finish() const;

  private:
    std::size_t run_child(const Group &group, std::size_t first);
    void pass(const std::string &name);
    void fail(const std::string &name, const std::string &reason);

    std::string path;
    int limit;
    int passed = 0;
    int failed = 0;
    bool has_hung = false; ///< A check of the group that is running.
    bool is_opened = false;
    bool cannot_open = false;
};
