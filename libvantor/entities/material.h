// Material and interface: what surfaces are made of.
#pragma once

#include "libvantor/entities/scattering.h"
#include "libvantor/words/reader.h"

namespace vantor {

/// How a surface scatters light.
struct Interface {
    DiffuseReflection reflection;
};

struct Material {
    Interface interface;
};

/// The "reflectance" of an interface, or of a material that is one at the same time.
Interface make_diffuse_interface(const Parameters &parameters);

/// Every number of the table's "diffuse" interface at its default: for objects without a material.
Material default_material();

} // namespace vantor
