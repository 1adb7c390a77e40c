// conformance: checks that a libVantor.so offers what renderer/ and VtTransform declare, and behaves as they say.
//
//     conformance PATH/libVantor.so
//
// One line for each check, "pass" or "fail" and what was checked, then "N passed, N failed". The exit code is 0 if all
// passed, 1 if any failed, 2 if the library cannot be opened. The library's own messages may stand in between.
#include "checks.h"
#include "library.h"
#include "report.h"

#include <iostream>
#include <stdexcept>

int main(int count, char **arguments) {
    if (count != 2) {
        std::cerr << "usage: conformance PATH/libVantor.so\n";
        return 2;
    }
    try {
        const Library library(arguments[1]);
        Report report;
        check_exports(library, report);
        check_values(library, report);
        check_list(library, report);
        check_proxy(library, report);
        check_transforms(library, report);
        check_bases(library, report);
        return report.finish();
    } catch (const std::runtime_error &reason) {
        std::cerr << "conformance: cannot open " << arguments[1] << ": " << reason.what() << "\n";
        return 2;
    }
}
