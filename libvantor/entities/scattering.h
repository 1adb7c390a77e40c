// Scattering: the lobes by which surfaces reflect light.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/warp.h"

namespace vantor {

/// Lambert's reflection: the same radiance in all directions. Directions are in the frame of the shading normal, both
/// of them pointing away from the surface.
struct DiffuseReflection {
    Color reflectance;

    /// The bidirectional reflectance distribution function, in 1/sr.
    Color value() const { return reflectance * inverse_pi; }

    /// A direction with density(direction.z).
    Vec3 sample(Pair numbers) const { return warp::cosine_hemisphere(numbers); }

    /// Per solid angle, of a direction with that cosine to the normal.
    float density(float cosine) const { return warp::cosine_hemisphere_density(cosine); }
};

} // namespace vantor
