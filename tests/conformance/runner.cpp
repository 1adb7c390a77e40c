// Child processes for groups of checks, and the report.
#include "runner.h"

#include "child.h"
#include "library.h"

#include <iostream>
#include <utility>

namespace {

// What a child sends: one line when the library is open, then one for each check. The first character tells them apart.
constexpr char opened_line = 'o';
constexpr char passed_line = '+';
constexpr char failed_line = '-';

// Why the check failed; empty if it passed.
std::string reason_of_failure(const Check &check, const Library &library) {
    try {
        check.run(library);
        return {};
    } catch (const Failure &failure) {
        return failure.what();
    } catch (const std::exception &exception) {
        return std::string("threw: ") + exception.what();
    } catch (...) {
        return "threw";
    }
}

// The work of a child.
void run_checks(const std::string &path, const Group &group, std::size_t first, const Child::Send &send) {
    try {
        const Library library(path);
        send(std::string(1, opened_line));
        for (std::size_t i = first; i < group.size(); ++i) {
            const std::string reason = reason_of_failure(group[i], library);
            send(reason.empty() ? std::string(1, passed_line) : failed_line + reason);
        }
    } catch (const Failure &failure) {
        send(failed_line + std::string(failure.what()));
    }
}

} // namespace

Runner::Runner(std::string library, int seconds) : path(std::move(library)), limit(seconds) {}

void Runner::run(const Group &group) {
    has_hung = false;
    std::size_t next = 0;
    while (next < group.size() && !cannot_open && !has_hung)
        next = run_child(group, next);
    // Where one check hangs, others probably do, and each would cost the whole limit.
    if (next < group.size() && !cannot_open)
        fail("the next " + std::to_string(group.size() - next) + " checks", "not run, because one took too long");
}

// Runs checks from the first on. Returns the first that is still to be run.
std::size_t Runner::run_child(const Group &group, std::size_t first) {
    Child child([&](const Child::Send &send) { run_checks(path, group, first, send); });
    const auto fail_opening = [&](const std::string &reason) {
        fail("opens", reason);
        cannot_open = true;
        return group.size();
    };
    const std::string too_long = "took longer than " + std::to_string(limit) + " s";

    std::string line;
    switch (child.receive(line, limit)) {
    case Child::Received::Line:
        if (line.front() != opened_line)
            return fail_opening(line.substr(1));
        break;
    case Child::Received::End:
        return fail_opening(child.how_it_ended());
    case Child::Received::TooLate:
        return fail_opening(too_long);
    }
    if (!std::exchange(is_opened, true))
        pass("opens");

    for (std::size_t i = first; i < group.size(); ++i) {
        const std::string &name = group[i].name;
        switch (child.receive(line, limit)) {
        case Child::Received::Line:
            line.front() == passed_line ? pass(name) : fail(name, line.substr(1));
            break;
        case Child::Received::End:
            fail(name, child.how_it_ended());
            return i + 1;
        case Child::Received::TooLate:
            fail(name, too_long);
            has_hung = true;
            return i + 1;
        }
    }
    return group.size();
}

void Runner::pass(const std::string &name) {
    std::cout << "pass  " << name << std::endl;
    ++passed;
}

void Runner::fail(const std::string &name, const std::string &reason) {
    std::cout << "fail  " << name << ": " << reason << std::endl;
    ++failed;
}

int Runner::finish() const {
    std::cout << passed << " passed, " << failed << " failed" << std::endl;
    return cannot_open ? 2 : failed > 0 ? 1 : 0;
}
