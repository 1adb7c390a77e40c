// Sphere emitter: a sphere that shines outwards.
#pragma once

#include "libvantor/lights/light_concept.h"

#include <memory>

namespace vantor {

/// Stretched by a transform it is an ellipsoid. Sampled uniformly by the solid angle that the reference point sees of
/// it, in the space where it is the unit sphere.
struct SphereEmitter {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = false;

    /// From the unit sphere. Behind a pointer, as most lights are smaller and there may be millions.
    std::shared_ptr<const Affine> world_from_unit;
    Color emitted;

    LightBounds bounds() const;
    bool sample(Vec3 reference, Point2f numbers, EmissionSample &result) const;
    Color radiance() const { return emitted; }
    float pdf(Vec3 reference, Vec3 direction, Vec3 point) const;

    /// A point, uniform in area where it is the unit sphere.
    Vec3 point(Point2f numbers) const;
};

} // namespace vantor
