// What the checks found: one line each, and the totals.
#pragma once

#include <exception>
#include <iostream>
#include <string>

class Report {
  public:
    void check(const std::string &what, bool holds) {
        std::cout << (holds ? "pass  " : "fail  ") << what << std::endl;
        ++(holds ? passed : failed);
    }

    /// Runs a check that may throw: an exception that leaves the library is a failure.
    template <class Check> void run(const std::string &what, Check holds) {
        try {
            check(what, holds());
        } catch (const std::exception &e) {
            check(what + " (threw: " + e.what() + ")", false);
        } catch (...) {
            check(what + " (threw)", false);
        }
    }

    /// The last line. Returns the exit code.
    int finish() const {
        std::cout << passed << " passed, " << failed << " failed" << std::endl;
        return failed ? 1 : 0;
    }

  private:
    int passed = 0;
    int failed = 0;
};
