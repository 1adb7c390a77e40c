// Light: what shines, as the script described it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"
#include "libvantor/images/raster.h"
#include "libvantor/parameters/reader.h"

#include <memory>
#include <optional>
#include <variant>

namespace vantor {

/// Shines from the objects that are added in its light block, from their front side.
struct AreaLight {
    Color radiance;
};

/// One minus the cosine of the angle between two directions of unit length: the height of a cone. Taken from their
/// difference, as one minus their product has few digits in a narrow cone.
inline float one_minus_cos_between(Vec3 a, Vec3 b) { return 0.5f * dot(a - b, a - b); }

/// A disk in the sky, of one radiance; or a parallel light, if it is a point there.
struct DistantLight {
    Vec3 to_light;             ///< Unit length, in world space; the middle.
    float one_minus_cos_theta; ///< One minus the cosine of the angle from the middle to the edge; 0 if parallel.
    Color irradiance;          ///< Of a surface that faces it.
};

/// Light from all directions, by a picture of at least one pixel that is finite and not negative: longitude across it
/// and latitude upwards, each by equal angles, -Z in the middle and +Y at the upper edge.
struct EnvironmentLight {
    std::shared_ptr<const Raster> picture;
    Color scale;             ///< Radiance is the picture times this.
    Affine world_from_local; ///< Of directions, with a determinant of 1 or -1.
};

struct PointLight {
    Vec3 position; ///< In world space.
    Color intensity;
};

/// A sky, and the sun in it.
struct SkyLight {
    EnvironmentLight sky;
    std::optional<DistantLight> sun;
};

/// A point light that shines into a cone.
struct SpotLight {
    Vec3 position; ///< In world space.
    Vec3 axis;     ///< Unit length: the way the light in the middle travels.
    Color intensity;
    float one_minus_cos_beam; ///< One minus the cosine of the angle from the axis within which the intensity is whole.
    float one_minus_cos_cutoff; ///< Likewise of the angle beyond which there is none; not below one_minus_cos_beam, and
                                ///< above 0.

    /// The share of the intensity in a direction of unit length. Between the two angles it falls by the cubic
    /// 3x^2 - 2x^3 of the cosine.
    float falloff(Vec3 direction) const {
        const float height = one_minus_cos_between(direction, axis);
        if (height <= one_minus_cos_beam)
            return 1;
        if (height >= one_minus_cos_cutoff)
            return 0;
        const float x = (one_minus_cos_cutoff - height) / (one_minus_cos_cutoff - one_minus_cos_beam);
        return x * x * (3 - 2 * x);
    }
};

struct Light {
    std::variant<AreaLight, DistantLight, EnvironmentLight, PointLight, SkyLight, SpotLight> kind;
    bool is_on = true;

    bool is_area() const { return std::holds_alternative<AreaLight>(kind); }
};

/// Under the transform, which has to be usable, but for an area light: that has no place.
Light make_light(const Type &type, const Parameters &parameters, const VtTransform &transform,
                 const CallReport &report);

} // namespace vantor
