// Light: what shines, as the script described it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"
#include "libvantor/pictures/raster.h"
#include "libvantor/words/reader.h"

#include <memory>
#include <optional>
#include <variant>

namespace vantor {

/// Shines from the objects that are added in its light block, from their front side.
struct AreaLight {
    Color radiance;
};

/// A disk in the sky, of one radiance; or a parallel light, if it is a point there.
struct DistantLight {
    Vec3 to_light;     ///< Unit length, in world space; the middle.
    float cone_height; ///< One minus the cosine of the angle from the middle to the edge; 0 if parallel.
    Color irradiance;  ///< Of a surface that faces it.
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
    float cos_beam;   ///< Inside this angle from the axis the intensity is whole.
    float cos_cutoff; ///< Outside of this, there is none; not above cos_beam.

    /// The share of the intensity at an angle from the axis. Between the two angles it falls by the cubic 3x^2 - 2x^3
    /// of the cosine.
    float falloff(float cosine) const {
        if (cosine >= cos_beam)
            return 1;
        if (cosine <= cos_cutoff)
            return 0;
        const float x = (cosine - cos_cutoff) / (cos_beam - cos_cutoff);
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
