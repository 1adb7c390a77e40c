// Vertex joining: one vertex of the corners of neighbouring primitives that agree.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/base/numbers.h"

#include <cstdint>
#include <vector>

namespace vantor {

/// A corner of a cell, in the world.
struct LatticeCorner {
    Vec3 point;
    Vec3 normal; ///< of length 1, as it is shaded
    float cell_side;
};

/// Appends the vertex of each corner to the list. Corners are one vertex where their points agree within a fiftieth of
/// a cell and their normals nearly do. The new vertices are numbered from `vertex_count` on; returns the new count.
/// Throws Interrupted.
std::size_t join_corners(const std::vector<LatticeCorner> &corners, std::size_t vertex_count,
                         std::vector<std::uint32_t> &vertices, const Interrupt &interrupt);

} // namespace vantor
