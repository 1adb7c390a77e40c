// Light: what shines, as the script described it.
#include "libvantor/entities/light.h"

namespace vantor {

namespace {

Color color(const VtVector3 &v) {
    const Vec3 f = to_float(v);
    return {f.x, f.y, f.z};
}

} // namespace

Light make_light(const Type &type, const Parameters &parameters, const VtTransform &transform) {
    if (type.name == "area")
        return {AreaLight{color(parameters.vector("radiance"))}};
    if (type.name == "distant") {
        VtVector3 travels = transformed_direction(parameters.vector("direction"), transform);
        travels.Normalize();
        return {DistantLight{-to_float(travels), color(parameters.vector("irradiance"))}};
    }
    const VtVector3 position = transformed_point(parameters.vector("position"), transform);
    return {PointLight{to_float(position), color(parameters.vector("intensity"))}};
}

} // namespace vantor
