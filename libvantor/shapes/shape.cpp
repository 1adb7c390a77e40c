// Shape: what can be placed, in its own space.
#include "libvantor/shapes/shape.h"

#include "libvantor/shapes/bicubic_patches.h"
#include "libvantor/shapes/subdivision.h"

namespace vantor {

namespace {

// A shape of any kind, made by the function of that kind.
template <auto make_kind> std::optional<Shape> make_of_kind(const Parameters &parameters, const CallReport &report) {
    auto kind = make_kind(parameters, report);
    if (!kind)
        return {};
    return Shape(std::move(*kind));
}

std::optional<Shape> make_quad_shape(const Parameters &parameters, const CallReport &report) {
    std::optional<QuadOrMesh> quad = make_quad(parameters, report);
    if (!quad)
        return {};
    return std::visit([](auto &kind) { return Shape(std::move(kind)); }, *quad);
}

std::optional<Shape> make_sphere_shape(const Parameters &parameters, const CallReport &) {
    return make_sphere(parameters);
}

// A kind whose primitives may carry colours says so by a member, and has a color_at().
template <class Kind>
concept CarriesColors = requires(const Kind &kind) {
    kind.colors.empty();
};

constexpr ShapeMaker makers[] = {
    {"box", make_of_kind<make_box>},
    {"cone", make_of_kind<make_cone>},
    {"curves", make_of_kind<make_curves>},
    {"cylinder", make_of_kind<make_cylinder>},
    {"disk", make_of_kind<make_disk>},
    {"mesh", make_of_kind<make_mesh>},
    {"patches", make_of_kind<make_patches>},
    {"points", make_of_kind<make_points>},
    {"quad", make_quad_shape},
    {"sphere", make_sphere_shape},
    {"subdivision", make_of_kind<make_subdivision>},
    {"torus", make_of_kind<make_torus>},
};

} // namespace

std::span<const ShapeMaker> shape_makers() { return makers; }

std::optional<Shape> make_shape(const Type &type, const Parameters &parameters, const CallReport &report) {
    return maker_of(shape_makers(), type).make(parameters, report);
}

float reach_of(const Shape &shape) {
    return std::visit([](const auto &kind) { return reach_of(kind); }, shape);
}

std::size_t primitives_of(const Shape &shape) {
    return std::visit([](const auto &kind) { return primitives_of(kind); }, shape);
}

bool has_colors(const Shape &shape) {
    return std::visit(
        []<class Kind>(const Kind &kind) {
            if constexpr (CarriesColors<Kind>)
                return !kind.colors.empty();
            else
                return false;
        },
        shape);
}

Color color_at(const Shape &shape, std::uint32_t primitive, Point2f on_primitive) {
    return std::visit(
        [&]<class Kind>(const Kind &kind) {
            if constexpr (CarriesColors<Kind>)
                return color_at(kind, primitive, on_primitive);
            else
                return Color{1, 1, 1};
        },
        shape);
}

SurfaceParameters parameters_at(const Shape &shape, std::uint32_t primitive, Point2f on_primitive, Vec3 point) {
    return std::visit([&](const auto &kind) { return parameters_at(kind, primitive, on_primitive, point); }, shape);
}

} // namespace vantor
