// Rounding: how far what is computed in floats may lie beside what is meant.
#pragma once

#include "libvantor/base/numbers.h"

namespace vantor {

/// The greatest relative error of rounding to a float: half a unit in the last place.
inline constexpr float unit_roundoff = 0x1p-24f;

/// A bound for coordinates of about that size after a few operations.
inline float rounding_of(Vec3 point) { return 64 * unit_roundoff * largest_coordinate(point); }

/// A bound for how far along a unit normal the rounding of a point's coordinates moves it, and that of the origin of a
/// ray which starts beside it.
inline float rounding_along(Vec3 normal, Vec3 point) {
    return 4 * unit_roundoff *
           (std::fabs(normal.x * point.x) + std::fabs(normal.y * point.y) + std::fabs(normal.z * point.z));
}

/// How far in front of a point of a flat emitter a shadow ray has to end, which comes from a distance: Embree finds the
/// emitter's plane by the distance of a corner from the ray's origin, with an error in proportion to that.
inline float clearance_of_emitter(Vec3 point, Vec3 from_corner, float distance) {
    const auto sum = [](Vec3 v) { return std::fabs(v.x) + std::fabs(v.y) + std::fabs(v.z); };
    return 16 * unit_roundoff * (distance + sum(from_corner) + sum(point));
}

} // namespace vantor
