// Point in object: a point of a surface in the space of its object, where patterns lie.
#pragma once

#include "libvantor/patterns/source.h"
#include "libvantor/shapes/shape.h"

namespace vantor {

/// The width of what a pixel sees, over its distance; a typical value.
inline constexpr float pixel_angle = 1e-3f;

struct PointInObject {
    SurfaceParameters parameters;
    PatternPoint at;

    /// Of a primitive, given by Embree's coordinates on that and in the object's space. What is seen of it there is
    /// that long, in the object's space.
    PointInObject(const Shape &shape, std::uint32_t primitive, Point2f on_primitive, Vec3 point, float length_seen)
        : parameters(parameters_at(shape, primitive, on_primitive, point)) {
        const bool has_uv = std::isfinite(parameters.uv.u + parameters.uv.v);
        at = {has_uv ? parameters.uv : Point2f(), point, footprint(length_seen)};
    }

  private:
    // The extent in u and v.
    Point2f footprint(float length_seen) const {
        const float in_u = length(parameters.along_u);
        const float in_v = length(parameters.along_v);
        return {in_u > 0 ? length_seen / in_u : 0.0f, in_v > 0 ? length_seen / in_v : 0.0f};
    }
};

} // namespace vantor
