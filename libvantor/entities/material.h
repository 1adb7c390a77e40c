// Material: what the surfaces of objects are made of.
#pragma once

#include "libvantor/scattering/scattering.h"
#include "libvantor/words/reader.h"

namespace vantor {

struct Material {
    Scattering scattering;

    /// Whether light may pass straight through.
    bool is_see_through() const { return false; }
};

/// Of the type that the script named, an interface, or a material that is one at the same time.
Scattering make_scattering(const Type &type, const Parameters &parameters);

/// For objects without a material: "diffuse" with all defaults.
Material default_material();

} // namespace vantor
