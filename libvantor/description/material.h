// Material: what the surfaces of objects are made of.
#pragma once

#include "libvantor/description/interface.h"
#include "libvantor/description/pattern.h"

#include <memory>

namespace vantor {

/// What makes a surface differ from point to point, let light pass, or have only one side. The patterns have to outlive
/// it.
struct Variation {
    const Pattern *color = nullptr;     ///< Replaces the colour of the BSDF; null leaves it.
    const Pattern *roughness = nullptr; ///< Likewise.
    const Pattern *metallic = nullptr;  ///< Likewise.
    NumberOrPattern opacity{1};
    const Pattern *bump = nullptr;       ///< Its luminance is a height above the surface; null for none.
    float bump_height = 0;               ///< Of the luminance 1, in the object's space.
    const Pattern *normal_map = nullptr; ///< Normals in (u, v): 0.5 + 0.5 x, along u, v and the normal; null for none.
    bool is_two_sided = true;            ///< Otherwise rays pass through it from behind.
};

struct Material {
    BsdfDescription bsdf;
    std::unique_ptr<const Variation> variation; ///< Null if there is none.

    /// Whether light may pass straight through.
    bool is_see_through() const {
        return variation && (!variation->is_two_sided || variation->opacity.pattern || variation->opacity.number < 1);
    }
};

/// The interface whose id the parameter of that name is; null, after a diagnostic, if it is none.
using InterfaceFinder = std::function<const BsdfDescription *(std::string_view parameter)>;

/// What a material may refer to.
struct MaterialFinders {
    InterfaceFinder interface;
    PatternFinder pattern;
};

using MaterialMaker =
    TypeMaker<std::optional<Material>(const Parameters &, const MaterialFinders &, const CallReport &)>;

/// One for each type of material.
std::span<const MaterialMaker> material_makers();

/// Nothing, after a diagnostic, if what is given as its interface is none.
std::optional<Material> make_material(const Type &type, const Parameters &parameters, const MaterialFinders &find,
                                      const CallReport &report);

/// For objects without a material: "diffuse" with all defaults.
Material default_material();

} // namespace vantor
