// Light: what shines, as the script described it.
#pragma once

#include "libvantor/lights/light.h"
#include "libvantor/parameters/type_maker.h"
#include "libvantor/patterns/source.h"

#include <optional>
#include <vector>

namespace vantor {

/// What newLight() made.
struct DescribedLight {
    std::vector<Light> lights;            ///< That shine by themselves: none of an area light, two of a sky with a sun.
    std::optional<Color> area_radiance{}; ///< Of an area light: it shines from the objects of its light block.
    const Pattern *pattern = nullptr;     ///< Of an area light: what that is multiplied by; null for 1.
    bool is_on = true;
    bool is_visible = true; ///< To the camera.

    bool is_area() const { return area_radiance.has_value(); }
};

using LightMaker = TypeMaker<DescribedLight(const Parameters &, const VtTransform &, const CallReport &)>;

/// One for each type of light.
std::span<const LightMaker> light_makers();

/// Whether lights of that type stand somewhere, under the transform. Area lights do not: their objects do.
bool is_placed(const Type &type);

/// The transform has to be usable, unless such a light is not placed.
DescribedLight make_light(const Type &type, const Parameters &parameters, const VtTransform &transform,
                          const CallReport &report);

} // namespace vantor
