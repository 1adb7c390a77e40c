// Shape: what can be placed, in its own space.
#include "libvantor/shapes/shape.h"

#include "libvantor/shapes/bicubic_patches.h"
#include "libvantor/shapes/subdivision.h"

namespace vantor {

namespace {

// A shape of any kind that is made of it.
template <class Kind> std::optional<Shape> as_shape(std::optional<Kind> kind) {
    if (!kind)
        return {};
    return Shape(std::move(*kind));
}

} // namespace

std::optional<Shape> make_shape(const Type &type, const Parameters &parameters, const CallReport &report) {
    if (type.name == "mesh")
        return as_shape(make_mesh(parameters, report));
    if (type.name == "patches")
        return as_shape(make_patches(parameters, report));
    if (type.name == "quad") {
        std::optional<QuadOrMesh> quad = make_quad(parameters, report);
        if (!quad)
            return {};
        return std::visit([](auto &kind) { return Shape(std::move(kind)); }, *quad);
    }
    if (type.name == "box")
        return as_shape(make_box(parameters, report));
    if (type.name == "subdivision")
        return as_shape(make_subdivision(parameters, report));
    if (type.name == "cone")
        return as_shape(make_cone(parameters, report));
    if (type.name == "curves")
        return as_shape(make_curves(parameters, report));
    if (type.name == "cylinder")
        return as_shape(make_cylinder(parameters, report));
    if (type.name == "disk")
        return as_shape(make_disk(parameters, report));
    if (type.name == "torus")
        return as_shape(make_torus(parameters, report));
    return make_sphere(parameters);
}

float reach_of(const Shape &shape) {
    return std::visit([](const auto &kind) { return reach_of(kind); }, shape);
}

std::size_t primitives_of(const Shape &shape) {
    return std::visit([](const auto &kind) { return primitives_of(kind); }, shape);
}

bool has_colors(const Shape &shape) {
    const auto *mesh = std::get_if<TriangleMesh>(&shape);
    return mesh && has_colors(*mesh);
}

SurfaceParameters parameters_at(const Shape &shape, std::uint32_t primitive, Point2f on_primitive, Vec3 point) {
    return std::visit([&](const auto &kind) { return parameters_at(kind, primitive, on_primitive, point); }, shape);
}

} // namespace vantor
