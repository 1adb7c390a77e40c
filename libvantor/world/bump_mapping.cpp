// Bump mapping: normals that follow a pattern.
#include "libvantor/world/bump_mapping.h"

namespace vantor {

namespace {

// Normals go to the world by the transposed inverse, and so back by the transposed map.
Vec3 normal_in_object(const Affine &world_from_object, Vec3 normal) {
    const Linear &m = world_from_object.linear;
    return {dot(m.row0, normal), dot(m.row1, normal), dot(m.row2, normal)};
}

// The normal of the surface after a pattern's heights are added to it: it leans against the slope. Blinn, "Simulation
// of Wrinkled Surfaces", 1978; without derivatives in (u, v), by the slopes along two directions of the surface
// (Mikkelsen, "Bump Mapping Unparametrized Surfaces on the GPU", 2010).
Vec3 bumped(const BumpPoint &point, const Pattern &heights, float scale, Vec3 normal) {
    const Vec3 local = normal_in_object(point.world_from_object, normal);
    if (!has_direction(local) || !(point.step > 0))
        return normal;
    const Frame frame(normalized(local));
    const auto height = [&](Vec3 direction, float distance) {
        const Point2f uv_change = point.uv_along(direction);
        PatternPoint at = point.at;
        at.point = at.point + direction * distance;
        at.uv = {at.uv.u + uv_change.u * distance, at.uv.v + uv_change.v * distance};
        return scale * luminance(evaluate(heights, at));
    };
    const auto slope = [&](Vec3 direction) {
        return (height(direction, point.step) - height(direction, -point.step)) / (2 * point.step);
    };
    const Vec3 bent = frame.z - frame.x * slope(frame.x) - frame.y * slope(frame.y);
    const Vec3 in_world = point.world_from_object.normals(bent);
    return direction_of(in_world, normal);
}

// The normal that a pattern gives by its components along u, v and the surface's normal.
Vec3 mapped(const BumpPoint &point, const Pattern &map, Vec3 normal) {
    const Linear &to_world = point.world_from_object.linear;
    const Vec3 along_u = to_world(point.parameters.along_u);
    const Vec3 tangent = along_u - normal * dot(normal, along_u);
    if (!has_direction(tangent))
        return normal;
    const Vec3 x = normalized(tangent);
    const Vec3 y = cross(normal, x);
    const float handedness = std::copysign(1.0f, dot(y, to_world(point.along_v())));
    const Color encoded = evaluate(map, point.at);
    const Vec3 bent = x * (2 * encoded.r - 1) + y * (handedness * (2 * encoded.g - 1)) + normal * (2 * encoded.b - 1);
    return direction_of(bent, normal);
}

// From a normal that leans beyond the surface, only its back would be visible.
Vec3 kept_in_front(Vec3 normal, Vec3 geometric_normal) {
    constexpr float least = 0.02f;
    const float cosine = dot(normal, geometric_normal);
    return cosine >= least ? normal : normalized(normal + geometric_normal * (least - cosine));
}

} // namespace

Vec3 BumpPoint::along_v() const {
    if (has_direction(parameters.along_v))
        return parameters.along_v;
    const Vec3 normal = normal_in_object(world_from_object, geometric_normal);
    return has_direction(normal) ? cross(normalized(normal), parameters.along_u) : Vec3();
}

Point2f BumpPoint::uv_along(Vec3 direction) const {
    const Vec3 u = parameters.along_u;
    const Vec3 v = along_v();
    // The two may be at any angle: each coordinate is measured at right angles to the other's direction.
    const Vec3 normal = cross(u, v);
    const float square = dot(normal, normal);
    if (!has_direction(normal))
        return {};
    return {dot(cross(direction, v), normal) / square, dot(cross(u, direction), normal) / square};
}

Vec3 bent_normal(const BumpPoint &point, const Variation &variation, Vec3 shading_normal) {
    Vec3 normal = shading_normal;
    if (variation.normal_map)
        normal = mapped(point, *variation.normal_map, normal);
    if (variation.bump)
        normal = bumped(point, *variation.bump, variation.bump_height, normal);
    return kept_in_front(normal, point.geometric_normal);
}

} // namespace vantor
