// Distant light: parallel, as from a star.
#pragma once

#include "libvantor/lights/light_concept.h"

namespace vantor {

struct DistantLight {
    static constexpr bool is_delta = true;
    static constexpr bool is_infinite = true;

    Vec3 to_light;    ///< Unit length.
    Color irradiance; ///< Of a surface that faces it.

    InfiniteLightBounds bounds() const { return {to_light * luminance(irradiance), luminance(irradiance)}; }

    bool sample(Vec3, Point2f, EmissionSample &result) const {
        result.to_light = to_light;
        result.radiance = irradiance;
        return true;
    }
};

} // namespace vantor
