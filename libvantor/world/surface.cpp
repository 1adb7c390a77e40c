// Surface: what a path meets at a hit.
#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// Whatever a pattern says, no surface reflects more light than there is. Also of a NaN.
float fraction(float value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }
Color fraction(Color color) { return {fraction(color.r), fraction(color.g), fraction(color.b)}; }

} // namespace

void Surface::vary(const Hit &hit, const Placement &placement, const Variation &variation) {
    if (!variation.is_two_sided && !is_front) {
        opaque_share = 0;
        return;
    }
    const Affine world_from_object = to_float(placement.world_from_object);
    const Vec3 point = world_from_object.point_back(hit.point);
    const SurfaceParameters parameters = parameters_at(placement.object->shape, hit.primitive, hit.on_primitive, point);
    const PatternPoint at{parameters.uv, point};

    opaque_share = fraction(vantor::evaluate(variation.opacity, at));
    if (variation.color || variation.roughness) {
        varied = *scattering;
        if (variation.color)
            set_color(*varied, fraction(vantor::evaluate(*variation.color, at)));
        if (variation.roughness)
            set_roughness(*varied, fraction(luminance(vantor::evaluate(*variation.roughness, at))));
        scattering = &*varied;
    }
}

} // namespace vantor
