// Surface: what a path meets at a hit.
#include "libvantor/world/surface.h"

#include "libvantor/world/bump_mapping.h"

namespace vantor {

namespace {

// Whatever a pattern says, no surface reflects more light than there is. Also of a NaN.
float fraction(float value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }
Color fraction(Color color) { return {fraction(color.r), fraction(color.g), fraction(color.b)}; }

// A pixel sees about a thousandth of the distance.
constexpr float pixel_angle = 1e-3f;

// How far u and v reach of a length in the object's space.
Point2f footprint_of(float length_seen, const SurfaceParameters &parameters) {
    const float in_u = length(parameters.along_u);
    const float in_v = length(parameters.along_v);
    return {in_u > 0 ? length_seen / in_u : 0.0f, in_v > 0 ? length_seen / in_v : 0.0f};
}

// A hit in the space of its object, where patterns lie.
struct HitInObject {
    Affine world_from_object;
    float scale; // of lengths, about
    SurfaceParameters parameters;
    PatternPoint at;

    HitInObject(const Hit &hit, const World &world)
        : world_from_object(world.map_at(hit)), scale(std::cbrt(std::fabs(world_from_object.determinant))) {
        const Vec3 point = world_from_object.point_back(hit.point);
        const Shape &shape = world.placements[hit.placement].object->shape;
        parameters = parameters_at(shape, hit.primitive, hit.on_primitive, point);
        const bool has_uv = std::isfinite(parameters.uv.u + parameters.uv.v);
        at = {has_uv ? parameters.uv : Point2f(), point, footprint_of(pixel_angle * hit.distance / scale, parameters)};
    }
};

bool is_there(const Variation &variation, bool is_front) { return variation.is_two_sided || is_front; }

} // namespace

float opacity_at(const Hit &hit, Vec3 arriving, const World &world) {
    const Variation *variation = world.placements[hit.placement].material->variation.get();
    if (!variation)
        return 1;
    if (!is_there(*variation, is_at_front(hit, arriving)))
        return 0;
    const NumberOrPattern &opacity = variation->opacity;
    return fraction(opacity.pattern ? vantor::evaluate(opacity, HitInObject(hit, world).at) : opacity.number);
}

void Surface::vary(const Hit &hit, const World &world) {
    static const Variation none;
    const Placement &placement = world.placements[hit.placement];
    const Variation &variation = placement.material->variation ? *placement.material->variation : none;
    opaque_share = is_there(variation, is_front) ? fraction(variation.opacity.number) : 0;
    const bool is_bent = variation.bump || variation.normal_map;
    const bool is_other = variation.color || variation.roughness || placement.object->has_colors;
    if (opaque_share == 0 || !(is_bent || is_other || variation.opacity.pattern))
        return;

    const HitInObject in_object(hit, world);
    const PatternPoint &at = in_object.at;
    opaque_share = fraction(vantor::evaluate(variation.opacity, at));
    if (opaque_share == 0)
        return;
    if (is_bent) {
        // About half of what a pixel sees, and beyond rounding.
        const float step = (0.5f * pixel_angle * hit.distance + hit.clearance) / in_object.scale;
        const BumpPoint relief{in_object.world_from_object, in_object.parameters, at, hit.geometric_normal, step};
        frame = Frame(bent_normal(relief, variation, hit.shading_normal));
    }
    if (!is_other)
        return;
    varied = *bsdf;
    bsdf = &*varied;
    if (variation.color)
        set_color(*varied, fraction(vantor::evaluate(*variation.color, at)));
    if (placement.object->has_colors)
        tint(*varied, fraction(in_object.parameters.color));
    if (variation.roughness)
        set_roughness(*varied, fraction(luminance(vantor::evaluate(*variation.roughness, at))));
}

} // namespace vantor
