// Mix: two colours or patterns, by an amount that may be a pattern, too.
#pragma once

#include "libvantor/patterns/source.h"

namespace vantor {

struct Mix {
    enum class Mode { Mix, Multiply, Add };

    ColorOrPattern a;
    ColorOrPattern b;
    NumberOrPattern amount; ///< 0 to 1; beyond it is clipped.
    Mode mode;

    Color evaluate(const PatternPoint &at) const;
};

} // namespace vantor
