// Surface: what a path meets at a hit.
#include "libvantor/world/surface.h"

#include "libvantor/world/bump_mapping.h"

namespace vantor {

namespace {

// Patterns may have any value, even NaN; no surface reflects more light than arrives.
float fraction(float value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }
Color fraction(Color color) { return {fraction(color.r), fraction(color.g), fraction(color.b)}; }

// The width of what a pixel sees, over its distance; a typical value.
constexpr float pixel_angle = 1e-3f;

// The extent in u and v of a length in the object's space.
Point2f footprint_of(float length_seen, const SurfaceParameters &parameters) {
    const float in_u = length(parameters.along_u);
    const float in_v = length(parameters.along_v);
    return {in_u > 0 ? length_seen / in_u : 0.0f, in_v > 0 ? length_seen / in_v : 0.0f};
}

// A hit in the space of its object, where patterns lie.
struct HitInObject {
    Affine world_from_object;
    float scale; // of lengths, roughly
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

bool is_visible_from(const Variation &variation, bool is_front) { return variation.is_two_sided || is_front; }

} // namespace

float opacity_at(const Hit &hit, Vec3 arriving, const World &world) {
    const Variation *variation = world.placements[hit.placement].material->variation.get();
    if (!variation)
        return 1;
    if (!is_visible_from(*variation, is_at_front(hit, arriving)))
        return 0;
    const NumberOrPattern &opacity = variation->opacity;
    return fraction(opacity.pattern ? vantor::evaluate(opacity, HitInObject(hit, world).at) : opacity.number);
}

void Surface::vary(const Hit &hit, const World &world) {
    static const Variation none;
    const Placement &placement = world.placements[hit.placement];
    const Variation &variation = placement.material->variation ? *placement.material->variation : none;
    opacity_here = is_visible_from(variation, is_front) ? fraction(variation.opacity.number) : 0;
    const bool is_bent = variation.bump || variation.normal_map;
    const bool changes_bsdf = variation.color || variation.roughness || variation.metallic;
    if (opacity_here > 0 && (is_bent || changes_bsdf || variation.opacity.pattern))
        follow_patterns(hit, world, variation);
    if (opacity_here > 0 && placement.has_colors())
        tint(description, fraction(placement.color_at(hit.instance, hit.primitive, hit.on_primitive)));
}

void Surface::follow_patterns(const Hit &hit, const World &world, const Variation &variation) {
    const HitInObject in_object(hit, world);
    const PatternPoint &at = in_object.at;
    opacity_here = fraction(vantor::evaluate(variation.opacity, at));
    if (opacity_here == 0)
        return;
    if (variation.bump || variation.normal_map) {
        // About half of the width that a pixel sees, and beyond rounding.
        const float step = (0.5f * pixel_angle * hit.distance + rounding_of(hit.point)) / in_object.scale;
        const BumpPoint point{in_object.world_from_object, in_object.parameters, at, hit.geometric_normal, step};
        frame = Frame(bent_normal(point, variation, hit.shading_normal));
    }
    if (variation.color)
        set_color(description, fraction(vantor::evaluate(*variation.color, at)));
    if (variation.roughness)
        set_roughness(description, fraction(luminance(vantor::evaluate(*variation.roughness, at))));
    if (variation.metallic)
        set_metallic(description, fraction(luminance(vantor::evaluate(*variation.metallic, at))));
}

} // namespace vantor
