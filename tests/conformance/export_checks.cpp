// Checks of what the library exports.
#include "checks.h"
#include "library.h"
#include "symbols.h"

Group export_checks() {
    Group group;
    for (const std::string &symbol : symbols::all())
        group.push_back({"exports " + readable(symbol), [symbol](const Library &library) {
                             require(library.address(symbol) != nullptr, "the symbol " + symbol + " is missing");
                         }});
    return group;
}
