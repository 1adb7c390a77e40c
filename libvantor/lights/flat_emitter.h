// Flat emitter: a parallelogram, triangle or ring whose front shines.
#pragma once

#include "libvantor/lights/light_concept.h"
#include "libvantor/shapes/disk.h"

namespace vantor {

/// The points corner + u * edge_u + v * edge_v. Sampled uniformly by area.
struct FlatEmitter {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = false;

    enum class Outline {
        Parallelogram, ///< u and v from 0 to 1.
        Triangle,      ///< Likewise, but u + v at most 1.
        Ring,          ///< u^2 + v^2 from the squared radius of the hole to 1; the corner is its centre.
    };

    Vec3 corner;
    Vec3 edge_u;
    Vec3 edge_v;
    Vec3 normal; ///< Unit length; the front.
    float area;
    Outline outline;
    float squared_hole; ///< Of a ring; unused otherwise.
    Color emitted;

    float power(float) const { return pi * area * luminance(emitted); }
    bool sample(Vec3 reference, Point2f numbers, EmissionSample &result) const;
    Color radiance() const { return emitted; }

    float pdf(Vec3 reference, Vec3 direction, Vec3 point) const {
        const Vec3 difference = point - reference;
        const float cosine = -dot(direction, normal);
        return cosine > 0 ? dot(difference, difference) / (cosine * area) : 0.0f;
    }
};

/// From a corner and its two neighbours, given in the object's space and in the order that is counter-clockwise as the
/// front sees it. The outline is a triangle or a parallelogram.
FlatEmitter flat_emitter(const Affine &world_from_object, Vec3 corner, Vec3 next, Vec3 previous,
                         FlatEmitter::Outline outline, Color radiance);

FlatEmitter disk_emitter(const Affine &world_from_object, const Disk &disk, Color radiance);

} // namespace vantor
