// Hit: where a ray meets a surface; and what can be asked of the tracer besides.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"
#include "libvantor/base/rounding.h"

#include <cstdint>

namespace vantor {

/// The way from a point to from + reach * direction. The direction has any length.
struct Segment {
    Vec3 from;
    Vec3 direction;
    float reach;
};

/// Whether Embree can follow a ray: with assertions it ends the process at one that is not finite, or that reaches
/// 1.8e18 anywhere, also in the space of an object whose scale is 1e-8. Both lengths may be 5e9, which is beyond all
/// corners of the world. One sum is tested instead of six numbers, which is quicker.
inline bool is_traceable(Vec3 from, Vec3 direction) { return dot(from, from) + dot(direction, direction) <= 2.5e19f; }

/// What rays may meet, as bits. A ray without a mask meets everything.
enum RayMask : std::uint32_t {
    mask_of_all = ~0u,
    mask_of_camera = 1, ///< All but what is hidden from the camera.
    mask_of_hidden = 2, ///< That alone.
};

/// Where a ray starts that leaves a point of a surface, given its normal and Hit::error, towards the direction.
inline Vec3 start_beside(Vec3 point, Vec3 normal, float error, Vec3 direction) {
    return point + normal * std::copysign(error, dot(normal, direction));
}

struct Hit {
    bool exists;           ///< Whether the ray meets anything; the rest is meaningless otherwise.
    float distance;        ///< From the ray's origin.
    Vec3 point;            ///< On its primitive: see PrimitivePoint.
    Vec3 geometric_normal; ///< Unit length, on the front side of the surface.
    Vec3 shading_normal;   ///< Unit length, on the same side; interpolated where a mesh has normals.
    float error;           ///< How far along the normal the surface may lie off the point, as rays from there find it.
    std::uint32_t placement;
    std::uint32_t instance;  ///< Which of the placement's instances, where it has any; 0 otherwise.
    std::uint32_t primitive; ///< A triangle or parallelogram of the object.
    Point2f on_primitive;    ///< Embree's coordinates of the point on it.

    /// Where a ray starts that leaves towards the direction: off the surface, so that it does not hit it again.
    Vec3 origin_towards(Vec3 direction) const { return start_beside(point, geometric_normal, error, direction); }
};

} // namespace vantor
