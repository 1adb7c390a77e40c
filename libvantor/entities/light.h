// Light: what shines, as the script described it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"
#include "libvantor/words/reader.h"

#include <variant>

namespace vantor {

/// Shines from the objects that are added in its light block, from their front side.
struct AreaLight {
    Color radiance;
};

struct DistantLight {
    Vec3 to_light; ///< Unit length, in world space.
    Color irradiance;
};

struct PointLight {
    Vec3 position; ///< In world space.
    Color intensity;
};

struct Light {
    std::variant<AreaLight, DistantLight, PointLight> kind;
    bool is_on = true;

    bool is_area() const { return std::holds_alternative<AreaLight>(kind); }
};

/// Under the transform, which has to be usable, but for an area light: that has no place.
Light make_light(const Type &type, const Parameters &parameters, const VtTransform &transform);

} // namespace vantor
