// What a check is, and how it fails.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

class Library;

/// Thrown by a check that does not hold; the text says what was found.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Fails the running check unless the condition holds.
inline void require(bool holds, const std::string &otherwise) {
    if (!holds)
        throw Failure(otherwise);
}

/// One line of the report. It passes when run() returns; it fails when that throws, ends the process, or hangs.
struct Check {
    std::string name;
    std::function<void(const Library &)> run;
};

/// Checks that run in one child process, one after the other.
using Group = std::vector<Check>;
