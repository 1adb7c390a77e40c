// Object: a shape that can be placed.
#pragma once

#include "libvantor/shapes/shape.h"

namespace vantor {

struct Object {
    VtLong id; ///< As the script knows it.
    Shape shape;
    float reach;     ///< The largest coordinate of any of its points.
    bool has_colors; ///< Of its own.
};

} // namespace vantor
