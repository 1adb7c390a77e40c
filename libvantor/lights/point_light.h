// Point light: shines from one point in all directions.
#pragma once

#include "libvantor/lights/cone.h"
#include "libvantor/lights/light_concept.h"

namespace vantor {

struct PointLight {
    static constexpr bool is_delta = true;
    static constexpr bool is_infinite = false;

    Vec3 position;
    Color intensity;

    LightBounds bounds() const { return {position, {}, {0, 0, 1}, -1, 0, luminance(intensity)}; }

    RayPart lit_part(const Ray &, RayPart whole) const { return whole; }

    bool sample(Vec3 reference, Point2f, EmissionSample &result) const {
        const Vec3 difference = position - reference;
        const float squared_distance = dot(difference, difference);
        if (!(squared_distance > 0))
            return false;
        result.to_light = difference * (1 / std::sqrt(squared_distance));
        result.end = position;
        result.radiance = intensity * (1 / squared_distance);
        return true;
    }
};

} // namespace vantor
