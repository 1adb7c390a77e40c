// Hit point: where a hit lies on its primitive, by the primitive itself.
#include "libvantor/embree/hit_point.h"

namespace vantor {

PrimitivePoint CurveSegments::rebuilt_at(unsigned segment, Point2f uv, Double3 at) const {
    const Curves::ControlPoint *p = &curves->points[curves->firsts[segment]];
    const double t = uv.u;
    const double s = 1 - t;
    const double weights[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
    Double3 middle;
    double radius = 0;
    float extent = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        middle = middle + Double3(p[i].position) * weights[i];
        radius += p[i].radius * weights[i];
        extent = std::max(extent, largest_coordinate(p[i].position - p[0].position) + p[i].radius);
    }
    // Embree looks for the crossing by Newton's method, until it is right to 16 units in the last place.
    const float error = 64 * unit_roundoff * extent;
    const Double3 across = at - middle;
    const double square = dot(across, across);
    if (!curves->are_tubes || !(square > 0))
        return {to_float(at), error};
    return {to_float(middle + across * (radius / std::sqrt(square))), error};
}

} // namespace vantor
