// Flat emitter: a parallelogram, triangle or ring whose front shines.
#include "libvantor/lights/flat_emitter.h"

#include "libvantor/base/rounding.h"
#include "libvantor/base/warp.h"
#include "libvantor/lights/spherical_polygons.h"

namespace vantor {

namespace {

// Coordinates (u, v) on the emitter, uniform in area.
Point2f sample_area(const FlatEmitter &emitter, Point2f numbers) {
    if (emitter.outline == FlatEmitter::Outline::Triangle)
        return warp::triangle(numbers);
    if (emitter.outline != FlatEmitter::Outline::Ring)
        return numbers;
    // The squared radius is uniform on a disk, and so it is on a ring.
    const Vec3 p = warp::disk({emitter.squared_hole + (1 - emitter.squared_hole) * numbers.u, numbers.v});
    return {p.x, p.y};
}

} // namespace

Vec3 FlatEmitter::point(Point2f numbers) const {
    const Point2f uv = sample_area(*this, numbers);
    return corner + edge_u * uv.u + edge_v * uv.v;
}

LightBounds FlatEmitter::bounds() const {
    const auto box_around = [&](Vec3 center, Vec3 half) {
        return LightBounds{center, half, normal, 1, 0, area * luminance(emitted)};
    };
    const auto sizes = [](Vec3 v) { return Vec3{std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)}; };
    if (outline == Outline::Parallelogram || outline == Outline::Rectangle)
        return box_around(corner + (edge_u + edge_v) * 0.5f, (sizes(edge_u) + sizes(edge_v)) * 0.5f);
    if (outline == Outline::Ring) {
        const auto reach = [](float u, float v) { return std::sqrt(u * u + v * v); };
        return box_around(corner, {reach(edge_u.x, edge_v.x), reach(edge_u.y, edge_v.y), reach(edge_u.z, edge_v.z)});
    }
    const auto middle = [](float u, float v) { return 0.5f * (std::min({0.0f, u, v}) + std::max({0.0f, u, v})); };
    const auto half = [](float u, float v) { return 0.5f * (std::max({0.0f, u, v}) - std::min({0.0f, u, v})); };
    return box_around(corner + Vec3{middle(edge_u.x, edge_v.x), middle(edge_u.y, edge_v.y), middle(edge_u.z, edge_v.z)},
                      {half(edge_u.x, edge_v.x), half(edge_u.y, edge_v.y), half(edge_u.z, edge_v.z)});
}

namespace {

bool are_perpendicular(Vec3 u, Vec3 v) {
    constexpr float rounding_of_cosines = 1e-5f;
    const float along = dot(u, v);
    return along * along <= rounding_of_cosines * rounding_of_cosines * dot(u, u) * dot(v, v);
}

// Beyond these, solid angles have too few digits.
float usable(float solid_angle) {
    constexpr float least = 1e-3f;
    constexpr float most = 6.28f; // of 2 pi: nearly half of all directions
    return solid_angle >= least && solid_angle <= most ? solid_angle : 0.0f;
}

} // namespace

float FlatEmitter::sampled_solid_angle(Vec3 reference) const {
    if (!is_near(reference))
        return 0;
    if (outline == Outline::Triangle)
        return usable(SphericalTriangle(reference, corner, edge_u, edge_v).solid_angle());
    return usable(SphericalRectangle(reference, corner, edge_u, edge_v).solid_angle());
}

float FlatEmitter::pdf(Vec3 reference, Vec3 direction, Vec3 point) const {
    const float cosine = -dot(direction, normal);
    if (!(cosine > 0))
        return 0;
    const float solid_angle = sampled_solid_angle(reference);
    if (solid_angle > 0)
        return 1 / solid_angle;
    const Vec3 difference = point - reference;
    return dot(difference, difference) / (cosine * area);
}

Point2f FlatEmitter::sample_solid_angle(Vec3 reference, Point2f numbers, float &solid_angle) const {
    const auto sample = [&](const auto &seen) {
        solid_angle = usable(seen.solid_angle());
        return solid_angle > 0 ? seen.sample(numbers) : sample_area(*this, numbers);
    };
    return outline == Outline::Triangle ? sample(SphericalTriangle(reference, corner, edge_u, edge_v))
                                        : sample(SphericalRectangle(reference, corner, edge_u, edge_v));
}

bool FlatEmitter::sample(Vec3 reference, Point2f numbers, EmissionSample &result) const {
    float solid_angle = 0;
    const Point2f uv =
        is_near(reference) ? sample_solid_angle(reference, numbers, solid_angle) : sample_area(*this, numbers);
    const Vec3 from_corner = edge_u * uv.u + edge_v * uv.v;
    const Vec3 point = corner + from_corner;
    const Vec3 difference = point - reference;
    const float squared_distance = dot(difference, difference);
    const float distance = std::sqrt(squared_distance);
    const float cosine = -dot(difference, normal) / distance;
    if (!(cosine > 0))
        return false;

    result.to_light = difference * (1 / distance);
    result.end = point + normal * clearance_of_emitter(point, from_corner, distance);
    result.radiance = emitted;
    // From area to solid angle: dw = cos dA / r^2.
    result.pdf = solid_angle > 0 ? 1 / solid_angle : squared_distance / (cosine * area);
    return true;
}

FlatEmitter flat_emitter(const Affine &world_from_object, Vec3 corner, Vec3 next, Vec3 previous,
                         FlatEmitter::Outline outline, Color radiance) {
    const Vec3 origin = world_from_object.point(corner);
    const Vec3 edge_u = world_from_object.point(next) - origin;
    const Vec3 edge_v = world_from_object.point(previous) - origin;
    const Vec3 normal = cross(edge_u, edge_v);
    const float area = length(normal);
    // A mirroring transform reverses the winding, but not the side that shines.
    const float front = std::copysign(1.0f, world_from_object.determinant);
    const bool is_triangle = outline == FlatEmitter::Outline::Triangle;
    if (!is_triangle && are_perpendicular(edge_u, edge_v))
        outline = FlatEmitter::Outline::Rectangle;
    return {origin, edge_u, edge_v, normal * (front / area), is_triangle ? 0.5f * area : area, outline, 0, radiance};
}

// The image of a disk is an ellipse: points that are uniform on the disk are uniform on it.
FlatEmitter disk_emitter(const Affine &world_from_object, const Disk &disk, Color radiance) {
    const CanonicalMap world_from_disk = disk.map.then(world_from_object);
    const Vec3 edge_u = to_float(world_from_disk.image_z);
    const Vec3 edge_v = to_float(world_from_disk.image_x);
    const Vec3 normal = to_float(unit(world_from_disk.normal({0, 1, 0})));
    const auto squared_hole = static_cast<float>(disk.hole * disk.hole);
    const float area = pi * (1 - squared_hole) * length(cross(edge_u, edge_v));
    return {to_float(world_from_disk.offset), edge_u,       edge_v,  normal, area,
            FlatEmitter::Outline::Ring,       squared_hole, radiance};
}

} // namespace vantor
