// Surface parameters: what patterns ask about a point of a shape.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"

namespace vantor {

struct SurfaceParameters {
    Point2f uv;        ///< Texture coordinates, v upwards.
    Vec3 along_u;      ///< How the point moves with u, in the object's space; may be zero.
    Vec3 along_v = {}; ///< How the point moves with v; zero where the shape does not tell.
};

} // namespace vantor
