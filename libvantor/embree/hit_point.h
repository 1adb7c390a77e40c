// Hit point: where a hit lies on its primitive, by the primitive itself.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/base/rounding.h"
#include "libvantor/shapes/canonical.h"
#include "libvantor/shapes/curves.h"
#include "libvantor/shapes/mesh.h"

#include <bit>
#include <variant>

namespace vantor {

/// A point of a primitive, in the space of the primitive's scene.
///
/// How far along the ray a hit is says where it lies with an error that grows with the ray's length. From the primitive
/// (the corners of a triangle, the equation of a round shape) the point comes out with an error that does not: Pharr,
/// Jakob, Humphreys, "Physically Based Rendering", 4th ed., 6.8.
struct PrimitivePoint {
    Vec3 point;
    /// How far from the point, along the normal, a ray that starts close by may find the primitive, as Embree computes
    /// in floats; but for the rounding of coordinates.
    float error;
};

/// How far a triangle may be found beside itself: see PrimitivePoint::error. The normal is the cross product of the
/// edges.
///
/// Embree subtracts the ray's origin from a corner, and multiplies by the cross product of two edges (Möller, Trumbore,
/// "Fast, Minimum Storage Ray/Triangle Intersection", 1997). With the unit roundoff u and the angle a of the edges, the
/// subtraction and the product make an error of 4 u, the edges' cross product 5 u / sin(a), of the corner's distance,
/// which is at most the longest edge; the sum of corner and edges makes 4 u.
inline float triangle_error(Vec3 edge_u, Vec3 edge_v) {
    const float square_u = dot(edge_u, edge_u);
    const float square_v = dot(edge_v, edge_v);
    const float longest = std::max({square_u, square_v, square_u + square_v - 2 * dot(edge_u, edge_v)});
    const float inverse_sine = std::sqrt(square_u * square_v) / length(cross(edge_u, edge_v));
    // Of slivers at most a hundred; of tiny ones, whose squares underflow, likewise.
    constexpr float most = 100;
    return unit_roundoff * std::sqrt(longest) * (8 + 5 * (inverse_sine < most ? inverse_sine : most));
}

/// A bound of 0 or more in half of a float, rounded up by at most 1/128.
class CompactBound {
  public:
    explicit CompactBound(float bound)
        : upper_half(static_cast<std::uint16_t>((std::bit_cast<std::uint32_t>(bound) + 0xffffu) >> 16)) {}
    float value() const { return std::bit_cast<float>(static_cast<std::uint32_t>(upper_half) << 16); }

  private:
    std::uint16_t upper_half;
};

/// What Embree traces as triangles: its own copies of corners.
struct TriangleBuffers {
    const Vec3 *points;
    const TriangleMesh::Triangle *triangles;
    const CompactBound *errors; ///< Of each triangle. To compute them at every hit takes longer.

    template <class At> PrimitivePoint rebuilt(unsigned triangle, Point2f uv, Vec3, At) const {
        const TriangleMesh::Triangle &t = triangles[triangle];
        const Vec3 corner = points[t[0]];
        return {corner + ((points[t[1]] - corner) * uv.u + (points[t[2]] - corner) * uv.v), errors[triangle].value()};
    }
};

/// A sphere, as Embree has it.
struct SphereBuffer {
    const std::array<float, 4> *centers_and_radii;

    template <class At> PrimitivePoint rebuilt(unsigned sphere, Point2f, Vec3 normal, At at) const {
        const auto [x, y, z, radius] = centers_and_radii[sphere];
        const Double3 center{x, y, z};
        const Double3 from_center = at() - center;
        const double square = dot(from_center, from_center);
        const Double3 direction = square > 0 ? from_center * (1 / std::sqrt(square)) : Double3(normalized(normal));
        // From the centre's distance to the origin Embree computes where the ray is nearest to it (4 u of the radius),
        // and half of the chord by the square of the distance there: 12 u of the radius' square.
        return {to_float(center + direction * radius), 16 * unit_roundoff * radius};
    }
};

/// A shape by formulas, which are computed in doubles.
struct AnalyticSurface {
    const void *placed;
    Double3 (*on_surface)(const void *placed, std::uint32_t part, Double3 point);
    float error; ///< Of the crossings, in proportion to the shape's largest coordinate.

    template <class At> PrimitivePoint rebuilt(unsigned part, Point2f, Vec3, At at) const {
        return {to_float(on_surface(placed, part, at())), error};
    }
};

/// Segments of curves. A tube is where its radius leads to, across the tangent; a ribbon has no formula, as Embree cuts
/// it into pieces that turn to the ray.
struct CurveSegments {
    const Curves *curves;

    template <class At> PrimitivePoint rebuilt(unsigned segment, Point2f uv, Vec3, At at) const {
        return rebuilt_at(segment, uv, at());
    }
    PrimitivePoint rebuilt_at(unsigned segment, Point2f uv, Double3 at) const;
};

using Primitives = std::variant<std::monostate, TriangleBuffers, SphereBuffer, AnalyticSurface, CurveSegments>;

/// The point of a hit on a primitive with Embree's coordinates there; `at` tells where the ray has met it, roughly.
template <class At>
PrimitivePoint rebuilt(const Primitives &primitives, unsigned primitive, Point2f uv, Vec3 normal, At at) {
    // What there is most of comes first.
    if (const auto *triangles = std::get_if<TriangleBuffers>(&primitives))
        return triangles->rebuilt(primitive, uv, normal, at);
    return std::visit(
        [&]<class Kind>(const Kind &kind) -> PrimitivePoint {
            if constexpr (std::is_same_v<Kind, std::monostate>)
                return {to_float(at()), 0};
            else
                return kind.rebuilt(primitive, uv, normal, at);
        },
        primitives);
}

} // namespace vantor
