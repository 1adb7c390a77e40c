// Material and interface: what surfaces are made of.
#include "libvantor/entities/material.h"

namespace vantor {

Interface make_diffuse_interface(const Parameters &parameters) {
    const Vec3 reflectance = to_float(parameters.vector("reflectance"));
    return {{{reflectance.x, reflectance.y, reflectance.z}}};
}

Material default_material() {
    const Type &diffuse = words_of(EntityKind::Material).types[0];
    return {make_diffuse_interface(Parameters(diffuse))};
}

} // namespace vantor
