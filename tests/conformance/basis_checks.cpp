// Checks of the spline bases.
#include "checks.h"
#include "objects.h"
#include "renderer/vt_bases.h"

#include <cmath>

Group basis_checks() {
    Group group;
    for (const std::string &symbol : symbols::bases)
        group.push_back({readable(symbol) + " is finite and always the same", [symbol](const Library &library) {
                             auto *basis = library.function<VtMatrix4()>(symbol);
                             const VtMatrix4 first = basis();
                             for (int r = 0; r < 4; ++r)
                                 for (int c = 0; c < 4; ++c)
                                     require(std::isfinite(first[r][c]), "an entry is " + std::to_string(first[r][c]));
                             for (int again = 0; again < 3; ++again)
                                 require(same_bits(first, basis()), "another matrix comes at another call");
                         }});
    return group;
}
