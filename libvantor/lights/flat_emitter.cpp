// Flat emitter: a parallelogram, triangle or ring whose front shines.
#include "libvantor/lights/flat_emitter.h"

#include "libvantor/base/rounding.h"
#include "libvantor/base/warp.h"

namespace vantor {

namespace {

// Coordinates (u, v) on the emitter, uniform in area.
Point2f sample_area(const FlatEmitter &emitter, Point2f numbers) {
    if (emitter.outline == FlatEmitter::Outline::Triangle)
        return warp::triangle(numbers);
    if (emitter.outline == FlatEmitter::Outline::Parallelogram)
        return numbers;
    // The squared radius is uniform on a disk, and so it is on a ring.
    const Vec3 p = warp::disk({emitter.squared_hole + (1 - emitter.squared_hole) * numbers.u, numbers.v});
    return {p.x, p.y};
}

} // namespace

bool FlatEmitter::sample(Vec3 reference, Point2f numbers, EmissionSample &result) const {
    const Point2f uv = sample_area(*this, numbers);
    const Vec3 from_corner = edge_u * uv.u + edge_v * uv.v;
    const Vec3 point = corner + from_corner;
    const Vec3 difference = point - reference;
    const float squared_distance = dot(difference, difference);
    const float distance = std::sqrt(squared_distance);
    const float cosine = -dot(difference, normal) / distance;
    if (!(cosine > 0))
        return false;

    // From area to solid angle: dw = cos dA / r^2.
    result.to_light = difference * (1 / distance);
    result.end = point + normal * clearance_of_emitter(point, from_corner, distance);
    result.radiance = emitted;
    result.pdf = squared_distance / (cosine * area);
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
