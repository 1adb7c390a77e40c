// Rounding: how far a computed point may lie off its surface.
#pragma once

#include "libvantor/base/numbers.h"

namespace vantor {

/// The rounding error of lengths. Some thirty units in the last place, of which tracing needs a few: larger loses
/// contact shadows, smaller lets surfaces shadow themselves.
inline constexpr float rounding = 4e-6f;

/// The rounding error of a point that was computed at that distance from a ray's origin.
inline float clearance_of(Vec3 point, float distance) { return rounding * (largest_coordinate(point) + distance); }

} // namespace vantor
