// Sphere emitter: a sphere that shines outwards.
#include "libvantor/lights/sphere_emitter.h"

#include "libvantor/base/rounding.h"
#include "libvantor/base/warp.h"

namespace vantor {

namespace {

// Of half the angle under which the unit sphere is seen, from a point outside it.
float one_minus_cos_theta(float squared_distance) {
    const float squared_sine = 1 / squared_distance;
    return squared_sine / (1 + std::sqrt(1 - squared_sine));
}

} // namespace

// The intensity of an ellipsoid is, roughly, that of a sphere of the same volume.
LightBounds SphereEmitter::bounds() const {
    const Linear &m = world_from_unit->linear;
    const float squared_radius = std::pow(std::fabs(world_from_unit->determinant), 2 / 3.0f);
    const Vec3 half{length({m.row0.x, m.row1.x, m.row2.x}), length({m.row0.y, m.row1.y, m.row2.y}),
                    length({m.row0.z, m.row1.z, m.row2.z})};
    return {world_from_unit->offset, half, {0, 0, 1}, -1, 0, pi * squared_radius * luminance(emitted)};
}

Vec3 SphereEmitter::point(Point2f numbers) const {
    constexpr float all_directions = 2; // 1 - cos of half a turn
    return world_from_unit->point(warp::cone(numbers, all_directions));
}

bool SphereEmitter::sample(Vec3 reference, Point2f numbers, EmissionSample &result) const {
    const Affine &map = *world_from_unit;
    const Vec3 from = map.point_back(reference);
    const float squared_distance = dot(from, from);
    if (!(squared_distance > 1))
        return false;
    const float distance = std::sqrt(squared_distance);
    const Frame frame(from * (-1 / distance));
    const Vec3 local = warp::cone(numbers, one_minus_cos_theta(squared_distance));
    const Vec3 direction = frame.world_from_local(local);

    // The nearer crossing of the sphere, in the frame around its centre: from + direction * t would cancel far away.
    const float squared_sine = local.x * local.x + local.y * local.y;
    const float half_chord = std::sqrt(std::max(0.0f, 1 - squared_distance * squared_sine));
    const float t = distance * local.z - half_chord;
    const float towards_reference = distance * squared_sine + local.z * half_chord;
    const Vec3 on_sphere = frame.world_from_local({local.x * t, local.y * t, -towards_reference});
    const Vec3 point = map.point(on_sphere);

    result.to_light = normalized(map.linear(direction));
    // Embree computes half of the chord from the square of the distance at which the ray passes the centre, so that the
    // crossing has an error of 8 u times the distance of the centre over the chord: the ray ends before that. It is at
    // most the root of the square's error.
    const float error = 8 * unit_roundoff * distance;
    const float before = error * (1 + 1 / std::max(half_chord, std::sqrt(error)));
    const Vec3 end = point + (reference - point) * std::min(before / t, 1.0f);
    result.end = end + normalized(map.normals(on_sphere)) * (4 * unit_roundoff * largest_coordinate(point));
    result.radiance = emitted;
    result.pdf = pdf(reference, result.to_light, point);
    return true;
}

// The solid angle of a linear map: a cone around the unit direction d of the unit sphere's space has, in world space,
// |det M| / |d M|^3 of its solid angle. With w the unit direction d M / |d M| of the world, |d M| is 1 / |w M^-1|.
float SphereEmitter::pdf(Vec3 reference, Vec3 direction, Vec3) const {
    const Vec3 from = world_from_unit->point_back(reference);
    const float squared_distance = dot(from, from);
    if (!(squared_distance > 1))
        return 0;
    const float inverse_stretch = length(world_from_unit->inverse(direction));
    const float determinant = std::fabs(world_from_unit->determinant);
    return warp::cone_pdf(one_minus_cos_theta(squared_distance)) /
           (inverse_stretch * inverse_stretch * inverse_stretch * determinant);
}

} // namespace vantor
