// Patch points: points of shapes by their parameters, and how triangles are divided into cells.
#include "libvantor/radiosity/patch_points.h"

#include "libvantor/base/warp.h"

namespace vantor {

namespace {

PatchPoint place_on(const TriangleMesh &mesh, std::uint32_t triangle, Point2f uv) {
    const TriangleMesh::Triangle &t = mesh.triangles[triangle];
    const auto at = [&](const std::vector<Vec3> &values) {
        return values[t[0]] * (1 - uv.u - uv.v) + values[t[1]] * uv.u + values[t[2]] * uv.v;
    };
    const Vec3 normal = cross(mesh.points[t[1]] - mesh.points[t[0]], mesh.points[t[2]] - mesh.points[t[0]]);
    return {at(mesh.points), normal, mesh.normals.empty() ? normal : at(mesh.normals)};
}

PatchPoint place_on(const Quads &quads, std::uint32_t quad, Point2f uv) {
    const Quads::Corners &c = quads.corners[quad];
    const Vec3 edge_u = c[1] - c[0];
    const Vec3 edge_v = c[3] - c[0];
    const Vec3 normal = cross(edge_u, edge_v);
    return {c[0] + edge_u * uv.u + edge_v * uv.v, normal, normal};
}

// As parameters_at() counts u and v.
PatchPoint place_on(const Sphere &sphere, std::uint32_t, Point2f uv) {
    const float polar = pi * (1 - uv.v);
    const float around = 2 * pi * uv.u;
    const float radius = std::sin(polar);
    const Vec3 normal{radius * std::sin(around), std::cos(polar), radius * std::cos(around)};
    return {sphere.center + normal * sphere.radius, normal, normal};
}

template <class Other> PatchPoint place_on(const Other &, std::uint32_t, Point2f) { return {}; }

} // namespace

PatchPoint point_in_world(const Shape &shape, const Affine &map, std::uint32_t primitive, Point2f uv) {
    const PatchPoint local = std::visit([&](const auto &kind) { return place_on(kind, primitive, uv); }, shape);
    return {map.point(local.point), map.normals(local.normal), map.normals(local.shading_normal)};
}

Point2f point_in_triangle_cell(std::uint32_t n, std::uint32_t cell, Point2f numbers) {
    // The rows from j on have (n - j)^2 cells.
    const auto cells_left = static_cast<double>(n * n - cell);
    const std::uint32_t j = n - static_cast<std::uint32_t>(std::ceil(std::sqrt(cells_left)));
    const std::uint32_t in_row = cell - first_cell_of_row(n, j);
    const std::uint32_t in_pairs = in_row / 2;
    const auto i = static_cast<float>(in_pairs);
    const Point2f within = warp::triangle(numbers);
    const float step = 1 / static_cast<float>(n);
    if (in_row % 2 == 0)
        return {(i + within.u) * step, (static_cast<float>(j) + within.v) * step};
    return {(i + 1 - within.u) * step, (static_cast<float>(j) + 1 - within.v) * step};
}

std::uint32_t facing_of(Vec3 n) {
    const Vec3 size{std::fabs(n.x), std::fabs(n.y), std::fabs(n.z)};
    const auto quarters = [](float along, float a, float b) {
        return (along < 0 ? 4u : 0u) + (a < 0 ? 2u : 0u) + (b < 0 ? 1u : 0u);
    };
    if (size.x >= size.y && size.x >= size.z)
        return quarters(n.x, n.y, n.z);
    if (size.y >= size.z)
        return 8 + quarters(n.y, n.z, n.x);
    return 16 + quarters(n.z, n.x, n.y);
}

} // namespace vantor
