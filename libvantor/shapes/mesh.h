// Mesh: triangles that share points.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/random.h"
#include "libvantor/shapes/arrays.h"
#include "libvantor/shapes/surface_parameters.h"

#include <array>
#include <optional>

namespace vantor {

/// Every triangle names three existing points, all finite, and has an area.
struct TriangleMesh {
    using Triangle = std::array<std::uint32_t, 3>;

    std::vector<Vec3> points;
    std::vector<Triangle> triangles;
    std::vector<Vec3> normals; ///< One for each point, or none at all.
    std::vector<Point2f> uvs;  ///< One for each point, or none at all.
    std::vector<Color> colors; ///< One for each point, or none at all.
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<TriangleMesh> make_mesh(const Parameters &parameters, const CallReport &report);

/// The parameter "uvs", one for each of so many points; nothing, after a diagnostic, if it cannot be used.
std::vector<Point2f> read_uvs(std::size_t points, const Parameters &parameters, const CallReport &report);

float reach_of(const TriangleMesh &mesh);
inline std::size_t primitives_of(const TriangleMesh &mesh) { return mesh.triangles.size(); }

/// The triangle's second and third corner weigh u and v. Without uvs these are its (u, v), too.
SurfaceParameters parameters_at(const TriangleMesh &mesh, std::uint32_t triangle, Point2f weights, Vec3 point);

/// The colour at such a point of a mesh that has colours.
Color color_at(const TriangleMesh &mesh, std::uint32_t triangle, Point2f weights);

} // namespace vantor
