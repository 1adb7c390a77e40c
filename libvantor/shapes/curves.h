// Curves: ribbons that face the ray, or tubes, along cubic splines.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/shapes/arrays.h"
#include "libvantor/shapes/surface_parameters.h"

#include <array>
#include <optional>

namespace vantor {

/// Segments in Bezier form, whatever they were given in. All control points are finite, no radius is negative, and each
/// segment has an extent.
struct Curves {
    /// A place, and the radius there.
    struct ControlPoint {
        Vec3 position;
        float radius;
    };

    /// Where a segment begins and ends on its curve, which runs from 0 to 1.
    struct Stretch {
        float from;
        float to;
    };

    bool are_tubes = false;
    std::vector<ControlPoint> points;  ///< Four for each segment.
    std::vector<std::uint32_t> firsts; ///< The first of them.
    std::vector<Stretch> stretches;    ///< Of each segment.
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Curves> make_curves(const Parameters &parameters, const CallReport &report);

float reach_of(const Curves &curves);
inline std::size_t primitives_of(const Curves &curves) { return curves.firsts.size(); }

/// u runs from 0 to 1 along the whole curve; v from 0 to 1 across a ribbon, and is 1/2 on a tube. Embree has -1 to 1
/// across a ribbon, and 0 on a tube.
SurfaceParameters parameters_at(const Curves &curves, std::uint32_t segment, Point2f on_segment, Vec3 point);

} // namespace vantor
