// Object: the shapes that can be placed, in their own space.
#include "libvantor/entities/object.h"

#include <string>

namespace vantor {

namespace {

VtVector3 sum(const VtVector3 &a, const VtVector3 &b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
VtVector3 difference(const VtVector3 &a, const VtVector3 &b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

bool has_area(Vec3 a, Vec3 b, Vec3 c) {
    const Vec3 normal = cross(b - a, c - a);
    // The product of two short edges may underflow; such a triangle could not be hit reliably either.
    const float square = dot(normal, normal);
    return square > std::numeric_limits<float>::min() && std::isfinite(square);
}

// Neither does a NaN pass, as largest_coordinate() may lose one.
bool is_usable(Vec3 p) { return is_finite(p) && largest_coordinate(p) <= largest_reach; }

// How many of its elements the array really has: fewer than its size, if that is negative or memory ran out.
template <class Element> VtLong stored_count(const VtInstanceArray<Element> &array) {
    VtLong stored = 0;
    array.ForEachBlock([&](const Element *, VtLong count) { stored += count; });
    return stored;
}

// Whether the array has all the elements that its size says; reported if not.
template <class Element> bool is_whole(const VtInstanceArray<Element> &array, std::string_view name,
                                       const Parameters &parameters, const CallReport &report) {
    const VtLong stored = stored_count(array);
    const bool has_all = stored == array.Size();
    if (!has_all)
        parameters.complain(name,
                            joined({"has ", std::to_string(array.Size()), " elements, of which ",
                                    std::to_string(stored), " have storage; nothing of the object will be seen"}),
                            report);
    return has_all;
}

std::vector<Vec3> floats_of(const VtInstanceArray<VtVector3> &array) {
    std::vector<Vec3> result;
    result.reserve(static_cast<std::size_t>(stored_count(array)));
    array.ForEachBlock([&](const VtVector3 *elements, VtLong count) {
        for (VtLong i = 0; i < count; ++i) {
            result.push_back(to_float(elements[i]));
        }
    });
    return result;
}

std::vector<std::uint32_t> indices_of(const VtInstanceArray<VtLong> &array) {
    std::vector<std::uint32_t> result;
    result.reserve(static_cast<std::size_t>(stored_count(array)));
    // A negative index becomes a very large one, which no mesh has.
    array.ForEachBlock(
        [&](const VtLong *elements, VtLong count) { result.insert(result.end(), elements, elements + count); });
    return result;
}

// How many triangles are wrong in some way, and the first of them.
struct Faults {
    std::size_t count = 0;
    std::size_t first = 0;

    void add(std::size_t triangle) {
        if (count++ == 0)
            first = triangle;
    }
};

std::optional<Shape> make_mesh(const Parameters &parameters, const CallReport &report) {
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
    if (parameters.is_given("uvs"))
        check_count("uvs", parameters.vector2_array("uvs").Size());

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

std::optional<Shape> make_quad(const Parameters &parameters, const CallReport &report) {
    VtVector3 corner[4];
    const VtVector3 origin = parameters.vector("origin");
    corner[0] = origin;
    corner[1] = sum(origin, parameters.vector("edge_u"));
    corner[3] = sum(origin, parameters.vector("edge_v"));
    corner[2] = sum(corner[1], parameters.vector("edge_v"));

    if (parameters.is_given("corners")) {
        const VtInstanceArray<VtVector3> &given = parameters.vector3_array("corners");
        if (!is_whole(given, "corners", parameters, report))
            return {};
        if (given.Size() != 4) {
            parameters.complain("corners",
                                joined({"has ", std::to_string(given.Size()),
                                        " elements (four are wanted); nothing of the quad will be seen"}),
                                report);
            return {};
        }
        for (const char *name : {"origin", "edge_u", "edge_v"})
            if (parameters.is_given(name))
                parameters.complain(name, "has no effect beside \"corners\"", report);
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

std::optional<Shape> make_box(const Parameters &parameters, const CallReport &report) {
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

Sphere make_sphere(const Parameters &parameters) {
    return {to_float(parameters.vector("center")), static_cast<float>(parameters.number("radius"))};
}

} // namespace

std::optional<Shape> make_shape(const Type &type, const Parameters &parameters, const CallReport &report) {
    if (type.name == "mesh")
        return make_mesh(parameters, report);
    if (type.name == "quad")
        return make_quad(parameters, report);
    if (type.name == "box")
        return make_box(parameters, report);
    return make_sphere(parameters);
}

float reach_of(const Shape &shape) {
    float reach = 0;
    const auto include = [&](Vec3 p) { reach = std::max(reach, largest_coordinate(p)); };
    if (const auto *mesh = std::get_if<TriangleMesh>(&shape)) {
        std::ranges::for_each(mesh->points, include);
    } else if (const auto *quads = std::get_if<Quads>(&shape)) {
        for (const Quads::Corners &corners : quads->corners)
            std::ranges::for_each(corners, include);
    } else {
        const Sphere &sphere = std::get<Sphere>(shape);
        reach = largest_coordinate(sphere.center) + sphere.radius;
    }
    return reach;
}

std::size_t primitives_of(const Shape &shape) {
    if (const auto *mesh = std::get_if<TriangleMesh>(&shape))
        return mesh->triangles.size();
    if (const auto *quads = std::get_if<Quads>(&shape))
        return quads->corners.size();
    return 1;
}

} // namespace vantor
