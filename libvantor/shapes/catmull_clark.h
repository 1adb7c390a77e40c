// Catmull and Clark's rules: polygons made finer step by step, and the smooth surface that they tend to.
//
// Catmull, Clark, "Recursively generated B-spline surfaces on arbitrary topological meshes", 1978; creases: DeRose,
// Kass, Truong, "Subdivision Surfaces in Character Animation", 1998; half-edges: Dupuy, Vanhoey, "A Halfedge Refinement
// Rule for Parallel Catmull-Clark Subdivision", 2021; limits: Halstead, Kass, DeRose, "Efficient, Fair Interpolation
// using Catmull-Clark Surfaces", 1993.
#pragma once

#include "libvantor/shapes/half_edges.h"
#include "libvantor/shapes/mesh.h"

#include <limits>

namespace vantor {

/// Of creases that stay, and of borders.
constexpr float infinitely_sharp = std::numeric_limits<float>::infinity();

/// Polygons, with the sharpness of their edges and corners.
struct Polygons {
    Topology topology;
    std::vector<Vec3> points;
    std::vector<Vec3> uvs;        // (u, v, 0) for each point, or none at all
    std::vector<float> sharpness; // of each edge: for so many steps it is a crease
    std::vector<bool> corners;    // whether a point stays where it is
};

/// One step finer; all faces are quads then.
Polygons refined(const Polygons &polygons);

/// The limit surface of quads, with its normals. Points are there once for each side of a crease, so that each side has
/// its own normals.
TriangleMesh limit_mesh(const Polygons &polygons);

} // namespace vantor
