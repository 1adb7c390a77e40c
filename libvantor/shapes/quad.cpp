// Quad: parallelograms, alone or as a box.
#include "libvantor/shapes/quad.h"

namespace vantor {

namespace {

VtVector3 sum(const VtVector3 &a, const VtVector3 &b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
} // namespace

std::optional<QuadOrMesh> make_quad(const Parameters &parameters, const CallReport &report) {
    VtVector3 corner[4];
    const VtVector3 origin = parameters.vector("origin");
    corner[0] = origin;
    corner[1] = sum(origin, parameters.vector("edge_u"));
    corner[3] = sum(origin, parameters.vector("edge_v"));
    corner[2] = sum(corner[1], parameters.vector("edge_v"));

    if (parameters.is_given("corners")) {
        const VtInstanceArray<VtVector3> &given = parameters.vector3_array("corners");
        if (!check_storage(given, "corners", parameters, report))
            return {};
        if (given.Size() != 4) {
            parameters.complain("corners",
                                joined({"has ", counted(given.Size(), "element"),
                                        " (expected four); nothing of the quad will be seen"}),
                                report);
            return {};
        }
        parameters.complain_beside("corners", {"origin", "edge_u", "edge_v"}, report);
        for (VtLong i = 0; i < 4; ++i)
            corner[i] = given.At(i);
    }

    Quads::Corners corners;
    for (int i = 0; i < 4; ++i)
        corners[static_cast<std::size_t>(i)] = to_float(corner[i]);
    const auto [a, b, c, d] = corners;
    const bool has_first = has_area(a, b, c);
    const bool has_second = has_area(a, c, d);
    if (!std::ranges::all_of(corners, is_usable) || !(has_first || has_second)) {
        report.diagnostic("the quad has no area, or corners beyond 1e9; nothing of it will be seen");
        return {};
    }

    // A parallelogram up to rounding is sampled as one; other corners make two triangles.
    const VtVector3 gap = difference(sum(corner[0], corner[2]), sum(corner[1], corner[3]));
    const VtVector3 diagonal = difference(corner[2], corner[0]);
    if (has_first && has_second && gap.Length() <= 1e-6 * diagonal.Length())
        return Quads{{corners}};
    TriangleMesh mesh;
    mesh.points.assign(corners.begin(), corners.end());
    if (has_first)
        mesh.triangles.push_back({0, 1, 2});
    if (has_second)
        mesh.triangles.push_back({0, 2, 3});
    return mesh;
}

std::optional<Quads> make_box(const Parameters &parameters, const CallReport &report) {
    const Vec3 a = to_float(parameters.vector("min"));
    const Vec3 b = to_float(parameters.vector("max"));
    if (!(a.x < b.x && a.y < b.y && a.z < b.z) || !is_usable(a) || !is_usable(b)) {
        report.diagnostic(
            "the box has no inside, as \"min\" is not below \"max\" everywhere, or it reaches beyond 1e9; "
            "nothing of it will be seen");
        return {};
    }
    return Quads{{
        {{{a.x, a.y, a.z}, {a.x, a.y, b.z}, {a.x, b.y, b.z}, {a.x, b.y, a.z}}},
        {{{b.x, a.y, b.z}, {b.x, a.y, a.z}, {b.x, b.y, a.z}, {b.x, b.y, b.z}}},
        {{{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, a.y, b.z}, {a.x, a.y, b.z}}},
        {{{a.x, b.y, b.z}, {b.x, b.y, b.z}, {b.x, b.y, a.z}, {a.x, b.y, a.z}}},
        {{{b.x, a.y, a.z}, {a.x, a.y, a.z}, {a.x, b.y, a.z}, {b.x, b.y, a.z}}},
        {{{a.x, a.y, b.z}, {b.x, a.y, b.z}, {b.x, b.y, b.z}, {a.x, b.y, b.z}}},
    }};
}

float reach_of(const Quads &quads) {
    float reach = 0;
    for (const Quads::Corners &corners : quads.corners)
        for (const Vec3 &p : corners)
            reach = std::max(reach, largest_coordinate(p));
    return reach;
}

SurfaceParameters parameters_at(const Quads &quads, std::uint32_t quad, Point2f, Vec3 point) {
    const Quads::Corners &c = quads.corners[quad];
    const Vec3 edge_u = c[1] - c[0];
    const Vec3 edge_v = c[3] - c[0];
    // The edges may have any angle: each coordinate is measured across the other edge.
    const Vec3 normal = cross(edge_u, edge_v);
    const float inverse_square = 1 / dot(normal, normal);
    const Vec3 from_corner = point - c[0];
    return {{dot(cross(from_corner, edge_v), normal) * inverse_square,
             dot(cross(edge_u, from_corner), normal) * inverse_square},
            edge_u,
            edge_v};
}

} // namespace vantor
