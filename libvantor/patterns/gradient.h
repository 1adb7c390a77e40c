// Gradient: colours that follow each other along a direction.
#pragma once

#include "libvantor/patterns/source.h"

#include <vector>

namespace vantor {

struct Gradient {
    struct Stop {
        float position;
        Color color;
    };

    std::vector<Stop> stops; ///< At least one; the positions never fall.
    PatternSpace space;
    Vec3 origin;    ///< Where the position is 0.
    Vec3 direction; ///< From there to where the position is 1; not zero.

    Color evaluate(const PatternPoint &at) const;
};

} // namespace vantor
