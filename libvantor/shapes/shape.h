// Shape: what can be placed, in its own space.
#pragma once

#include "libvantor/parameters/type_maker.h"
#include "libvantor/shapes/cone.h"
#include "libvantor/shapes/curves.h"
#include "libvantor/shapes/disk.h"
#include "libvantor/shapes/points.h"
#include "libvantor/shapes/quad.h"
#include "libvantor/shapes/sphere.h"
#include "libvantor/shapes/torus.h"

namespace vantor {

using Shape = std::variant<TriangleMesh, Quads, Sphere, Disk, Cone, Torus, Curves, Points>;

using ShapeMaker = TypeMaker<std::optional<Shape>(const Parameters &, const CallReport &)>;

/// One for each type of object that has a shape of its own.
std::span<const ShapeMaker> shape_makers();

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Shape> make_shape(const Type &type, const Parameters &parameters, const CallReport &report);

/// The largest coordinate of any of its points, either way.
float reach_of(const Shape &shape);

/// How many triangles, parallelograms, segments or other parts it has.
std::size_t primitives_of(const Shape &shape);

/// Whether its primitives carry colours, which the material's is multiplied with.
bool has_colors(const Shape &shape);

/// The colour that a primitive of a shape with colours carries, at Embree's coordinates on it.
Color color_at(const Shape &shape, std::uint32_t primitive, Point2f on_primitive);

/// At a point of the shape's surface: of that primitive, with Embree's coordinates on it.
SurfaceParameters parameters_at(const Shape &shape, std::uint32_t primitive, Point2f on_primitive, Vec3 point);

} // namespace vantor
