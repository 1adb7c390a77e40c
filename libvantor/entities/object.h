// Object: the shapes that can be placed, in their own space.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/words/reader.h"

#include <array>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace vantor {

/// Every triangle names three existing points, all finite, and has an area.
struct TriangleMesh {
    using Triangle = std::array<std::uint32_t, 3>;

    std::vector<Vec3> points;
    std::vector<Triangle> triangles;
    std::vector<Vec3> normals; ///< One for each point, or none at all.
};

/// Parallelograms, each by its corners, counter-clockwise when seen from the front.
struct Quads {
    using Corners = std::array<Vec3, 4>;

    std::vector<Corners> corners;
};

struct Sphere {
    Vec3 center;
    float radius;
};

using Shape = std::variant<TriangleMesh, Quads, Sphere>;

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Shape> make_shape(const Type &type, const Parameters &parameters, const CallReport &report);

/// The largest coordinate of any of its points, either way.
float reach_of(const Shape &shape);

/// The largest coordinate that a point may have, in an object or in the world: squares of areas stay finite.
inline constexpr float largest_reach = 1e9f;

/// How many triangles, parallelograms or spheres it has.
std::size_t primitives_of(const Shape &shape);

} // namespace vantor
