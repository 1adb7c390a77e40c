// Points: spheres by the million, one at each of a cloud's positions.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/random.h"
#include "libvantor/shapes/arrays.h"
#include "libvantor/shapes/surface_parameters.h"

#include <array>
#include <optional>

namespace vantor {

/// All centres and radii are finite, and no radius is 0.
struct Points {
    /// A centre, and the radius, as Embree reads them where they are.
    using Ball = std::array<float, 4>;

    std::vector<Ball> balls;
    std::vector<Color> colors; ///< One for each ball, or none at all.
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Points> make_points(const Parameters &parameters, const CallReport &report);

float reach_of(const Points &points);
inline std::size_t primitives_of(const Points &points) { return points.balls.size(); }

/// Each is a sphere of its own, with the (u, v) of one.
SurfaceParameters parameters_at(const Points &points, std::uint32_t ball, Point2f, Vec3 point);

inline Color color_at(const Points &points, std::uint32_t ball, Point2f) { return points.colors[ball]; }

} // namespace vantor
