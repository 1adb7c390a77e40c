// Patch points: points of shapes by their parameters, and how triangles are divided into cells.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/shapes/shape.h"

namespace vantor {

/// A point of a surface. The normals have any length.
struct PatchPoint {
    Vec3 point;
    Vec3 normal;
    Vec3 shading_normal;
};

/// Of a triangle, parallelogram or sphere, where u and v say, which run from 0 to 1; on spheres as parameters_at()
/// counts them. The map goes from the object to the world.
PatchPoint point_in_world(const Shape &shape, const Affine &map, std::uint32_t primitive, Point2f uv);

/// A triangle in n^2 cells. Their corners (i, j) lie at i / n towards the second corner and j / n towards the third,
/// row after row; so do the cells, those that stand like the triangle and those that do not in turn.
inline std::uint32_t corner_of_triangle(std::uint32_t n, std::uint32_t i, std::uint32_t j) {
    return j * (n + 1) - j * (j - 1) / 2 + i;
}
inline std::uint32_t first_cell_of_row(std::uint32_t n, std::uint32_t j) { return 2 * n * j - j * j; }

/// A uniform point of a cell, by its u and v in the triangle; made of two numbers from 0 to 1.
Point2f point_in_triangle_cell(std::uint32_t n, std::uint32_t cell, Point2f numbers);

/// Which of 24 parts of the sphere of directions: of a cube's faces the quarters. Normals of one part differ by at most
/// 55 degrees.
constexpr std::size_t facing_count = 24;
std::uint32_t facing_of(Vec3 n);

} // namespace vantor
