// Checker: squares or cubes of two colours in turn.
#pragma once

#include "libvantor/patterns/source.h"

namespace vantor {

struct Checker {
    ColorOrPattern a; ///< Of the square or cube whose least corner is the origin.
    ColorOrPattern b;
    PatternSpace space;
    Vec3 scale; ///< How many squares or cubes lie on a length of 1.

    Color evaluate(const PatternPoint &at) const;
};

} // namespace vantor
