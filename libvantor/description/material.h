// Material: what the surfaces of objects are made of.
#pragma once

#include "libvantor/description/interface.h"
#include "libvantor/description/pattern.h"

#include <memory>

namespace vantor {

/// How a surface differs from one whose every point is like the others, opaque, and the same from both sides. The
/// patterns have to outlive it.
struct Variation {
    const Pattern *color = nullptr;     ///< In place of the scattering's own; null for that.
    const Pattern *roughness = nullptr; ///< Likewise.
    NumberOrPattern opacity{1};
    const Pattern *bump = nullptr;       ///< Its luminance is a height above the surface; null for none.
    float bump_height = 0;               ///< Of the luminance 1, in the object's space.
    const Pattern *normal_map = nullptr; ///< Normals in (u, v): 0.5 + 0.5 x, along u, v and the normal; null for none.
    bool is_two_sided = true;            ///< Otherwise it is not there for those behind it.
};

struct Material {
    Bsdf bsdf;
    std::unique_ptr<const Variation> variation; ///< Null if there is none.

    /// Whether light may pass straight through.
    bool is_see_through() const {
        return variation && (!variation->is_two_sided || variation->opacity.pattern || variation->opacity.number < 1);
    }
};

/// A surface whose interface scatters like that.
Material make_surface(Bsdf bsdf, const Parameters &parameters, const PatternFinder &find, const CallReport &report);

/// For objects without a material: "diffuse" with all defaults.
Material default_material();

} // namespace vantor
