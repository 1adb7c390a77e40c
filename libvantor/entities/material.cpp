// Material: what the surfaces of objects are made of.
#include "libvantor/entities/material.h"

namespace vantor {

Scattering make_scattering(const Type &, const Parameters &parameters) {
    const Vec3 reflectance = to_float(parameters.vector("reflectance"));
    return Diffuse{{reflectance.x, reflectance.y, reflectance.z}};
}

Material default_material() {
    const Type &diffuse = words_of(EntityKind::Material).types[0];
    return {make_scattering(diffuse, Parameters(diffuse))};
}

} // namespace vantor
