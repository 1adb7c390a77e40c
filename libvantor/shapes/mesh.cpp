// Mesh: triangles that share points.
#include "libvantor/shapes/mesh.h"

namespace vantor {

namespace {

// How many triangles are wrong in some way, and the first of them.
struct Faults {
    std::size_t count = 0;
    std::size_t first = 0;

    void add(std::size_t triangle) {
        if (count++ == 0)
            first = triangle;
    }
};

} // namespace

std::optional<TriangleMesh> make_mesh(const Parameters &parameters, const CallReport &report) {
    bool are_whole = true;
    for (const char *name : {"points", "normals"})
        if (parameters.is_given(name))
            are_whole &= is_whole(parameters.vector3_array(name), name, parameters, report);
    are_whole &= is_whole(parameters.long_array("triangles"), "triangles", parameters, report);
    if (parameters.is_given("uvs"))
        are_whole &= is_whole(parameters.vector2_array("uvs"), "uvs", parameters, report);
    if (!are_whole)
        return {};

    TriangleMesh mesh;
    mesh.points = floats_of(parameters.vector3_array("points"));
    const std::size_t point_count = mesh.points.size();
    const std::vector<std::uint32_t> indices = indices_of(parameters.long_array("triangles"));
    if (indices.size() % 3 != 0)
        parameters.complain("triangles",
                            joined({"has ", std::to_string(indices.size()),
                                    " indices (three for each triangle are wanted); the rest is left out"}),
                            report);

    Faults outside;
    Faults unusable;
    Faults flat;
    mesh.triangles.reserve(indices.size() / 3);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const TriangleMesh::Triangle t{indices[i], indices[i + 1], indices[i + 2]};
        if (t[0] >= point_count || t[1] >= point_count || t[2] >= point_count) {
            outside.add(i / 3);
            continue;
        }
        const Vec3 a = mesh.points[t[0]];
        const Vec3 b = mesh.points[t[1]];
        const Vec3 c = mesh.points[t[2]];
        if (!is_usable(a) || !is_usable(b) || !is_usable(c))
            unusable.add(i / 3);
        else if (!has_area(a, b, c))
            flat.add(i / 3);
        else
            mesh.triangles.push_back(t);
    }
    const auto report_faults = [&](const Faults &faults, std::string_view name, std::string_view what) {
        if (faults.count > 0)
            parameters.complain(name,
                                joined({"leaves out ", std::to_string(faults.count), " triangles, the first of them ",
                                        std::to_string(faults.first), " (", what, ")"}),
                                report);
    };
    report_faults(outside, "triangles",
                  point_count == 0 ? "there are no points"
                                   : joined({"indices from 0 to ", std::to_string(point_count - 1), " are wanted"}));
    report_faults(unusable, "points", "finite coordinates up to 1e9 are wanted");
    report_faults(flat, "triangles", "corners that span an area are wanted");

    // Normals and texture coordinates go with the points.
    const auto check_count = [&](std::string_view name, long count) {
        const bool is_good = count == static_cast<long>(point_count);
        if (!is_good)
            parameters.complain(name,
                                joined({"has ", std::to_string(count), " elements (one for each of the ",
                                        std::to_string(point_count), " points is wanted); it is left out"}),
                                report);
        return is_good;
    };
    if (parameters.is_given("normals")) {
        std::vector<Vec3> normals = floats_of(parameters.vector3_array("normals"));
        const bool are_usable = std::ranges::all_of(normals, [](Vec3 n) {
            const float square = dot(n, n);
            return square > std::numeric_limits<float>::min() && std::isfinite(square);
        });
        if (!are_usable)
            parameters.complain("normals", "has zero or unusable vectors (directions are wanted); it is left out",
                                report);
        else if (check_count("normals", static_cast<long>(normals.size())))
            mesh.normals = std::move(normals);
    }
    if (parameters.is_given("uvs") && check_count("uvs", parameters.vector2_array("uvs").Size())) {
        mesh.uvs.reserve(point_count);
        parameters.vector2_array("uvs").ForEachBlock([&](const VtVector2 *elements, VtLong count) {
            for (VtLong i = 0; i < count; ++i)
                mesh.uvs.push_back({static_cast<float>(elements[i][0]), static_cast<float>(elements[i][1])});
        });
        const auto is_usable_pair = [](Pair p) {
            return std::fabs(p.u) <= largest_reach && std::fabs(p.v) <= largest_reach;
        };
        if (!std::ranges::all_of(mesh.uvs, is_usable_pair)) {
            parameters.complain(
                "uvs", "has unusable elements (finite coordinates up to 1e9 are wanted); it is left out", report);
            mesh.uvs.clear();
        }
    }

    if (mesh.triangles.empty()) {
        report.diagnostic("the mesh has no usable triangle; nothing of it will be seen");
        return {};
    }
    // Embree reads no point that no triangle names, but wants none beyond its range in the buffer either.
    for (Vec3 &p : mesh.points)
        if (!is_usable(p))
            p = {};
    return mesh;
}

float reach_of(const TriangleMesh &mesh) {
    float reach = 0;
    for (const Vec3 &p : mesh.points)
        reach = std::max(reach, largest_coordinate(p));
    return reach;
}

SurfaceParameters parameters_at(const TriangleMesh &mesh, std::uint32_t triangle, Pair weights, Vec3) {
    const TriangleMesh::Triangle &t = mesh.triangles[triangle];
    const Vec3 edge1 = mesh.points[t[1]] - mesh.points[t[0]];
    const Vec3 edge2 = mesh.points[t[2]] - mesh.points[t[0]];
    if (mesh.uvs.empty())
        return {weights, edge1};
    const auto [a, b, c] = std::array{mesh.uvs[t[0]], mesh.uvs[t[1]], mesh.uvs[t[2]]};
    const Pair uv{a.u + (b.u - a.u) * weights.u + (c.u - a.u) * weights.v,
                  a.v + (b.v - a.v) * weights.u + (c.v - a.v) * weights.v};
    // The direction in which u grows and v stands still: the edges' changes of (u, v), inverted.
    const float du1 = b.u - a.u, dv1 = b.v - a.v, du2 = c.u - a.u, dv2 = c.v - a.v;
    const float determinant = du1 * dv2 - du2 * dv1;
    return {uv, determinant == 0 ? edge1 : (edge1 * dv2 - edge2 * dv1) * (1 / determinant)};
}

} // namespace vantor
