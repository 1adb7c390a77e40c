// conformance: checks that a libVantor.so offers what renderer/ and VtTransform declare, and behaves as they say.
//
//     conformance [--limit SECONDS] LIBRARY [TYPE...]
//
// One line for each check, "pass" or "fail" and what was checked, with the reason if it failed; then "N passed, N
// failed". The exit code is 0 if all passed, 1 if any failed, 2 if the library cannot be opened. The library's own
// messages may stand in between. A check that takes longer than the limit (10 s unless given) fails. The types are
// names that the library knows: its creating operations are then tried with these, too.
#include "checks.h"
#include "library.h"
#include "runner.h"

#include <cstdlib>
#include <iostream>

int main(int count, char **arguments) {
    std::vector<std::string> words(arguments + 1, arguments + count);
    int seconds = 10;
    if (words.size() >= 2 && words[0] == "--limit") {
        seconds = std::atoi(words[1].c_str());
        words.erase(words.begin(), words.begin() + 2);
    }
    if (words.empty() || seconds <= 0) {
        std::cerr << "usage: conformance [--limit SECONDS] LIBRARY [TYPE...]\n";
        return 2;
    }

    Runner runner(path_to_open(words[0]), seconds);
    runner.run(export_checks());
    runner.run(value_checks());
    runner.run(list_checks());
    runner.run(scene_checks());
    runner.run(operation_checks());
    runner.run(creation_checks({words.begin() + 1, words.end()}));
    runner.run(transform_checks());
    runner.run(basis_checks());
    runner.run(optional_checks());
    runner.run(script_checks());
    return runner.finish();
}
