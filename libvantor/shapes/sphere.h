// Sphere.
#pragma once

#include "libvantor/shapes/arrays.h"
#include "libvantor/shapes/surface_parameters.h"

namespace vantor {

struct Sphere {
    Vec3 center;
    float radius;
};

inline Sphere make_sphere(const Parameters &parameters) {
    return {to_float(parameters.vector("center")), static_cast<float>(parameters.number("radius"))};
}

inline float reach_of(const Sphere &sphere) { return largest_coordinate(sphere.center) + sphere.radius; }
constexpr std::size_t primitives_of(const Sphere &) { return 1; }

/// u runs once around the Y axis, from 0 at +Z by +X; v from 0 at the lower pole to 1 at the upper.
inline SurfaceParameters parameters_at(const Sphere &sphere, std::uint32_t, Point2f, Vec3 point) {
    const Vec3 from_center = point - sphere.center;
    const float around = std::atan2(from_center.x, from_center.z);
    const float height = std::clamp(from_center.y / sphere.radius, -1.0f, 1.0f);
    const float u = around * (0.5f * inverse_pi);
    const float off_axis = std::hypot(from_center.x, from_center.z);
    const float fall = off_axis > 0 ? -from_center.y / off_axis : 0.0f;
    return {{u < 0 ? u + 1 : u, 1 - std::acos(height) * inverse_pi},
            Vec3{from_center.z, 0, -from_center.x} * (2 * pi),
            Vec3{from_center.x * fall, off_axis, from_center.z * fall} * pi};
}

} // namespace vantor
