// Mesh: triangles that share points.
#include "libvantor/shapes/mesh.h"

#include "libvantor/shapes/colors.h"

namespace vantor {

namespace {

// How many faces are wrong in some way, and the first of them.
struct Faults {
    std::size_t count = 0;
    std::size_t first = 0;

    void add(std::size_t face) {
        if (count++ == 0)
            first = face;
    }
};

template <std::size_t corners> using Face = std::array<std::uint32_t, corners>;

// Calls visit(face) for each whole face. The array may be very large: it is not copied.
template <std::size_t corners, class Visit> void for_each_face(const VtInstanceArray<VtLong> &indices, Visit visit) {
    Face<corners> face;
    std::size_t known = 0;
    indices.ForEachBlock([&](const VtLong *elements, VtLong count) {
        for (VtLong i = 0; i < count; ++i) {
            // A negative index becomes a very large one, which no mesh has.
            face[known++] = static_cast<std::uint32_t>(elements[i]);
            if (known == corners) {
                visit(face);
                known = 0;
            }
        }
    });
}

void add_face(TriangleMesh &mesh, const Face<3> &face) { mesh.triangles.push_back(face); }

// Splits along a diagonal that lies inside the quad: with a reflex corner, only one does.
void add_face(TriangleMesh &mesh, const Face<4> &face) {
    const auto point = [&](std::size_t i) { return mesh.points[face[i]]; };
    const auto normal = [&](std::size_t i, std::size_t j, std::size_t k) {
        return cross(point(j) - point(i), point(k) - point(i));
    };
    const bool turns = dot(normal(0, 1, 2), normal(0, 2, 3)) < 0;
    const std::size_t first = turns ? 1 : 0;
    for (const std::size_t second : {first + 1, first + 2}) {
        const TriangleMesh::Triangle t{face[first], face[second], face[(second + 1) % 4]};
        if (has_area(mesh.points[t[0]], mesh.points[t[1]], mesh.points[t[2]]))
            mesh.triangles.push_back(t);
    }
}

bool has_area(const TriangleMesh &mesh, const Face<3> &face) {
    return has_area(mesh.points[face[0]], mesh.points[face[1]], mesh.points[face[2]]);
}
bool has_area(const TriangleMesh &mesh, const Face<4> &face) {
    return has_area(mesh, Face<3>{face[0], face[1], face[2]}) || has_area(mesh, Face<3>{face[0], face[2], face[3]});
}

// The faces of the parameter, "triangles" or "quads". Those that cannot be used are counted and left out.
template <std::size_t corners>
void add_faces(TriangleMesh &mesh, std::string_view name, const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<VtLong> &indices = parameters.long_array(name);
    const auto count = static_cast<std::size_t>(indices.Size());
    const bool is_triangles = corners == 3;
    if (count % corners != 0)
        parameters.complain(
            name,
            joined({"has ", std::to_string(count), " indices (expected ", is_triangles ? "three" : "four", " for each ",
                    is_triangles ? "triangle" : "quad", "); the rest is left out"}),
            report);

    Faults outside;
    Faults unusable;
    Faults flat;
    std::size_t number = 0;
    mesh.triangles.reserve(mesh.triangles.size() + count / corners * (corners - 2));
    for_each_face<corners>(indices, [&](const Face<corners> &face) {
        const auto exists = [&](std::uint32_t i) { return i < mesh.points.size(); };
        const auto is_good = [&](std::uint32_t i) { return is_usable(mesh.points[i]); };
        if (!std::ranges::all_of(face, exists))
            outside.add(number);
        else if (!std::ranges::all_of(face, is_good))
            unusable.add(number);
        else if (!has_area(mesh, face))
            flat.add(number);
        else
            add_face(mesh, face);
        ++number;
    });

    const auto report_faults = [&](const Faults &faults, std::string_view of, std::string_view what) {
        if (faults.count > 0)
            parameters.complain(
                of, joined({left_out(faults.count, corners == 3 ? "triangle" : "quad", faults.first), " (", what, ")"}),
                report);
    };
    report_faults(outside, name,
                  mesh.points.empty()
                      ? "there are no points"
                      : joined({"expected indices from 0 to ", std::to_string(mesh.points.size() - 1)}));
    report_faults(unusable, "points", "expected finite coordinates up to 1e9");
    report_faults(flat, name, "expected corners that span an area");
}

void add_normals(TriangleMesh &mesh, const Parameters &parameters, const CallReport &report) {
    std::vector<Vec3> normals = floats_of(parameters.vector3_array("normals"));
    const bool are_usable = std::ranges::all_of(normals, has_direction);
    if (!are_usable)
        parameters.complain("normals", "has zero or unusable vectors (expected directions); it is left out", report);
    else if (check_one_for_each(mesh.points.size(), "points", "normals", static_cast<VtLong>(normals.size()),
                                parameters, report))
        mesh.normals = std::move(normals);
}

// Checks that all that is given has storage, and that there are faces; reports if not.
bool check_arrays(const Parameters &parameters, const CallReport &report) {
    bool are_whole = true;
    for (const char *name : {"points", "normals", "colors"})
        if (parameters.is_given(name))
            are_whole &= check_storage(parameters.vector3_array(name), name, parameters, report);
    for (const char *name : {"triangles", "quads"})
        if (parameters.is_given(name))
            are_whole &= check_storage(parameters.long_array(name), name, parameters, report);
    if (parameters.is_given("uvs"))
        are_whole &= check_storage(parameters.vector2_array("uvs"), "uvs", parameters, report);
    if (parameters.is_given("triangles") || parameters.is_given("quads"))
        return are_whole;
    report.diagnostic(
        "neither \"triangles\" nor \"quads\" is given (an intarray: three or four indices of points, from "
        "0, for each face)");
    return false;
}

} // namespace

std::vector<Point2f> read_uvs(std::size_t points, const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<VtVector2> &given = parameters.vector2_array("uvs");
    if (!check_one_for_each(points, "points", "uvs", given.Size(), parameters, report))
        return {};
    std::vector<Point2f> uvs = copied(given, [](const VtVector2 &v) -> Point2f {
        return {static_cast<float>(v[0]), static_cast<float>(v[1])};
    });
    const auto is_usable_pair = [](Point2f p) {
        return std::fabs(p.u) <= largest_reach && std::fabs(p.v) <= largest_reach;
    };
    if (std::ranges::all_of(uvs, is_usable_pair))
        return uvs;
    parameters.complain("uvs", "has unusable elements (expected finite coordinates up to 1e9); it is left out", report);
    return {};
}

std::optional<TriangleMesh> make_mesh(const Parameters &parameters, const CallReport &report) {
    if (!check_arrays(parameters, report))
        return {};
    TriangleMesh mesh;
    mesh.points = floats_of(parameters.vector3_array("points"));
    const long said_before = report.diagnostics();
    if (parameters.is_given("triangles"))
        add_faces<3>(mesh, "triangles", parameters, report);
    if (parameters.is_given("quads"))
        add_faces<4>(mesh, "quads", parameters, report);
    if (mesh.triangles.empty()) {
        if (report.diagnostics() == said_before)
            report.diagnostic("the mesh has no triangle; nothing of it will be seen");
        return {};
    }
    if (parameters.is_given("normals"))
        add_normals(mesh, parameters, report);
    if (parameters.is_given("uvs"))
        mesh.uvs = read_uvs(mesh.points.size(), parameters, report);
    if (parameters.is_given("colors"))
        mesh.colors = read_colors(mesh.points.size(), "points", parameters, report);

    // Embree never reads a point that no triangle uses, but requires all coordinates in the buffer to be in its range.
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

SurfaceParameters parameters_at(const TriangleMesh &mesh, std::uint32_t triangle, Point2f weights, Vec3) {
    const TriangleMesh::Triangle &t = mesh.triangles[triangle];
    const Vec3 edge1 = mesh.points[t[1]] - mesh.points[t[0]];
    const Vec3 edge2 = mesh.points[t[2]] - mesh.points[t[0]];
    SurfaceParameters result{weights, edge1, edge2};
    if (mesh.uvs.empty())
        return result;

    const auto [a, b, c] = std::array{mesh.uvs[t[0]], mesh.uvs[t[1]], mesh.uvs[t[2]]};
    const float du1 = b.u - a.u, dv1 = b.v - a.v, du2 = c.u - a.u, dv2 = c.v - a.v;
    result.uv = {a.u + du1 * weights.u + du2 * weights.v, a.v + dv1 * weights.u + dv2 * weights.v};
    // The directions in which one of u and v grows and the other stands still: the edges' changes of (u, v), inverted.
    const float determinant = du1 * dv2 - du2 * dv1;
    if (determinant != 0) {
        result.along_u = (edge1 * dv2 - edge2 * dv1) * (1 / determinant);
        result.along_v = (edge2 * du1 - edge1 * du2) * (1 / determinant);
    }
    return result;
}

Color color_at(const TriangleMesh &mesh, std::uint32_t triangle, Point2f weights) {
    const TriangleMesh::Triangle &t = mesh.triangles[triangle];
    return mesh.colors[t[0]] * (1 - weights.u - weights.v) + mesh.colors[t[1]] * weights.u +
           mesh.colors[t[2]] * weights.v;
}

} // namespace vantor
