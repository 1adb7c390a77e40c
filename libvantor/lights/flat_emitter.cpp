// Flat emitter: a parallelogram, triangle or ring whose front shines.
#include "libvantor/lights/flat_emitter.h"

#include "libvantor/lights/spherical_polygons.h"

namespace vantor {

Point2f FlatEmitter::sample_area(Point2f numbers) const {
    if (outline != Outline::Ring)
        return sample_polygon(numbers);
    // The squared radius is uniform on a disk, and so it is on a ring.
    const Vec3 p = warp::disk({squared_hole + (1 - squared_hole) * numbers.u, numbers.v});
    return {p.x, p.y};
}

Vec3 FlatEmitter::point(Point2f numbers) const {
    const Point2f uv = sample_area(numbers);
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
    const auto drawn_from = [&](const auto &polygon) {
        solid_angle = usable(polygon.solid_angle());
        return solid_angle > 0 ? polygon.sample(numbers) : sample_area(numbers);
    };
    return outline == Outline::Triangle ? drawn_from(SphericalTriangle(reference, corner, edge_u, edge_v))
                                        : drawn_from(SphericalRectangle(reference, corner, edge_u, edge_v));
}

bool FlatEmitter::sample(Vec3 reference, Point2f numbers, EmissionSample &result) const {
    float solid_angle = 0;
    const Point2f uv = is_near(reference) ? sample_solid_angle(reference, numbers, solid_angle) : sample_area(numbers);
    const Seen point = seen(reference, uv);
    if (!(point.cosine > 0))
        return false;
    result.to_light = point.to_light;
    result.end = point.end;
    result.radiance = emitted;
    result.pdf = solid_angle > 0 ? 1 / solid_angle : point.area_pdf;
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
