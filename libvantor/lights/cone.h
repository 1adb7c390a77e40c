// Cone: directions around an axis, measured by one minus the cosine, which keeps its digits in narrow cones.
#pragma once

#include "libvantor/base/numbers.h"

namespace vantor {

/// One minus the cosine of the angle between two directions of unit length. Computed from their difference, as one
/// minus their product has few digits where they are close.
inline float one_minus_cos_between(Vec3 a, Vec3 b) { return 0.5f * dot(a - b, a - b); }

} // namespace vantor
