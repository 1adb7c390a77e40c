// Distant disk light: a disk in the sky with the same radiance all over, as the sun.
#pragma once

#include "libvantor/base/warp.h"
#include "libvantor/lights/cone.h"
#include "libvantor/lights/light_concept.h"

namespace vantor {

struct DistantDiskLight {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = true;

    Vec3 to_light;             ///< Unit length; to the middle of the disk.
    float one_minus_cos_theta; ///< Of the angle from its middle to its edge; above 0.
    Color irradiance;          ///< Of a surface that faces it.

    // A cap of height h has the solid angle 2 pi h, and the vector of the projected disk, whatever its angle.
    InfiniteLightBounds bounds() const {
        return {to_light * luminance(irradiance), 2 * pi * one_minus_cos_theta * luminance(radiance())};
    }

    bool sample(Vec3, Point2f numbers, EmissionSample &result) const {
        result.to_light = Frame(to_light).world_from_local(warp::cone(numbers, one_minus_cos_theta));
        result.radiance = radiance();
        result.pdf = warp::cone_pdf(one_minus_cos_theta);
        return true;
    }

    SeenLight seen(Vec3 direction) const {
        if (!(one_minus_cos_between(direction, to_light) <= one_minus_cos_theta))
            return {{}, 0};
        return {radiance(), warp::cone_pdf(one_minus_cos_theta)};
    }

    /// A disk of radiance L has the irradiance pi L sin^2(theta).
    Color radiance() const {
        const float squared_sine = one_minus_cos_theta * (2 - one_minus_cos_theta);
        return irradiance * (inverse_pi / squared_sine);
    }
};

} // namespace vantor
