// Quad: parallelograms, alone or as a box.
#pragma once

#include "libvantor/shapes/mesh.h"

#include <variant>

namespace vantor {

/// Parallelograms, each by its corners, counter-clockwise when seen from the front.
struct Quads {
    using Corners = std::array<Vec3, 4>;

    std::vector<Corners> corners;
};

/// Four corners that are no parallelogram make two triangles.
using QuadOrMesh = std::variant<Quads, TriangleMesh>;

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<QuadOrMesh> make_quad(const Parameters &parameters, const CallReport &report);
std::optional<Quads> make_box(const Parameters &parameters, const CallReport &report);

float reach_of(const Quads &quads);
inline std::size_t primitives_of(const Quads &quads) { return quads.corners.size(); }

/// u and v run from 0 to 1 along the edges from the first corner.
SurfaceParameters parameters_at(const Quads &quads, std::uint32_t quad, Point2f, Vec3 point);

} // namespace vantor
