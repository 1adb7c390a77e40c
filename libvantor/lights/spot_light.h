// Spot light: shines from one point into a cone.
#pragma once

#include "libvantor/lights/cone.h"
#include "libvantor/lights/point_light.h"

namespace vantor {

struct SpotLight {
    static constexpr bool is_delta = true;
    static constexpr bool is_infinite = false;

    Vec3 position;
    Vec3 axis;                  ///< Unit length: the direction in which the light in the middle travels.
    Color intensity;            ///< Along the axis.
    float one_minus_cos_beam;   ///< Of the angle from the axis up to which the intensity is constant.
    float one_minus_cos_cutoff; ///< Of the angle beyond which there is no light; at least that of the beam, above 0.

    /// The fraction of the intensity in a direction of unit length. Between the two angles it falls by the cubic
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

    // Normals fill the beam, where the intensity is constant; emission goes on from there to the cutoff.
    LightBounds bounds() const {
        const auto sine = [](float height) { return std::sqrt(std::max(0.0f, height * (2 - height))); };
        const float cos_beam = 1 - one_minus_cos_beam;
        const float cos_emission =
            cos_beam * (1 - one_minus_cos_cutoff) + sine(one_minus_cos_beam) * sine(one_minus_cos_cutoff);
        return {position, {}, axis, cos_beam, cos_emission, luminance(intensity)};
    }

    /// The points of a ray that the light may reach.
    RayPart lit_part(const Ray &ray, RayPart whole) const {
        // What is outside a cone that is wider than a half-space may come in two pieces.
        if (one_minus_cos_cutoff >= 1)
            return whole;
        const float sine = std::sqrt(one_minus_cos_cutoff * (2 - one_minus_cos_cutoff));
        return SolidCone{position, axis, sine, 1 - one_minus_cos_cutoff}.part_of(ray, whole);
    }

    bool sample(Vec3 reference, Point2f numbers, EmissionSample &result) const {
        if (!PointLight{position, intensity}.sample(reference, numbers, result))
            return false;
        const float fraction = falloff(-result.to_light);
        result.radiance = result.radiance * fraction;
        return fraction > 0;
    }
};

} // namespace vantor
