// Surface: what a path meets at a hit.
#include "libvantor/world/surface.h"

#include "libvantor/world/bump_mapping.h"
#include "libvantor/world/point_in_object.h"

namespace vantor {

namespace {

// Patterns may have any value, even NaN; no surface reflects more light than arrives.
float fraction(float value) { return value > 0 ? std::min(value, 1.0f) : 0.0f; }
Color fraction(Color color) { return {fraction(color.r), fraction(color.g), fraction(color.b)}; }

// A hit in the space of its object.
struct HitInObject {
    ObjectMap map;
    PointInObject in_object;

    HitInObject(const Hit &hit, const World &world)
        : map(world.map_at(hit)),
          in_object(world.placements[hit.placement].object->shape, hit.primitive, hit.on_primitive,
                    map.world_from_object.point_back(hit.point), pixel_angle * hit.distance / map.scale) {}
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
    return fraction(opacity.pattern ? vantor::evaluate(opacity, HitInObject(hit, world).in_object.at) : opacity.number);
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
        tint(varied ? *varied : varied.emplace(*constant),
             fraction(placement.color_at(hit.instance, hit.primitive, hit.on_primitive)));
}

void Surface::follow_patterns(const Hit &hit, const World &world, const Variation &variation) {
    const HitInObject hit_there(hit, world);
    const auto &[parameters, at] = hit_there.in_object;
    opacity_here = fraction(vantor::evaluate(variation.opacity, at));
    if (opacity_here == 0)
        return;
    if (variation.bump || variation.normal_map) {
        // About half of the width that a pixel sees, and beyond rounding.
        const float step = (0.5f * pixel_angle * hit.distance + rounding_of(hit.point)) / hit_there.map.scale;
        const BumpPoint point{hit_there.map.world_from_object, parameters, at, hit.geometric_normal, step};
        normal = bent_normal(point, variation, hit.shading_normal);
    }
    if (!(variation.color || variation.roughness || variation.metallic))
        return;
    BsdfDescription &here = varied.emplace(*constant);
    if (variation.color)
        set_color(here, fraction(vantor::evaluate(*variation.color, at)));
    if (variation.roughness)
        set_roughness(here, fraction(luminance(vantor::evaluate(*variation.roughness, at))));
    if (variation.metallic)
        set_metallic(here, fraction(luminance(vantor::evaluate(*variation.metallic, at))));
}

} // namespace vantor
