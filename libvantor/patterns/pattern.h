// Pattern: colours over a surface.
#pragma once

#include "libvantor/patterns/checker.h"
#include "libvantor/patterns/gradient.h"
#include "libvantor/patterns/image.h"
#include "libvantor/patterns/mix.h"
#include "libvantor/patterns/noise.h"

#include <variant>

namespace vantor {

/// The most patterns that one may be made of, counting each use: it takes as long as all of them.
inline constexpr int most_parts = 1000;

struct Pattern {
    std::variant<Checker, Gradient, Image, Mix, Noise> kind;
    int parts = 1; ///< How many patterns it is made of: itself, and for each use of another its parts.
};

} // namespace vantor
