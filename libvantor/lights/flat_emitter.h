// Flat emitter: a parallelogram, triangle or ring whose front shines.
#pragma once

#include "libvantor/base/rounding.h"
#include "libvantor/base/warp.h"
#include "libvantor/lights/light_concept.h"
#include "libvantor/shapes/disk.h"

namespace vantor {

/// The points corner + u * edge_u + v * edge_v.
///
/// Seen from nearby, rectangles and triangles are sampled uniformly by solid angle: by area, what is near would be
/// chosen no more often than what is far, and the sample's weight would have no bound. Everything else is sampled
/// uniformly by area. Of rings there is no simple parametrization by solid angle: the known ones invert integrals
/// numerically (Guillén et al., "Area-Preserving Parameterizations for Spherical Ellipses", 2017).
struct FlatEmitter {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = false;

    enum class Outline {
        Parallelogram, ///< u and v from 0 to 1.
        Rectangle,     ///< Likewise, with right angles.
        Triangle,      ///< Likewise, but u + v at most 1.
        Ring,          ///< u^2 + v^2 from the squared radius of the hole to 1; the corner is its centre.
    };

    Vec3 corner;
    Vec3 edge_u;
    Vec3 edge_v;
    Vec3 normal; ///< Unit length; the front.
    float area;
    Outline outline;
    float squared_hole; ///< Of a ring; unused otherwise.
    Color emitted;

    LightBounds bounds() const;
    bool sample(Vec3 reference, Point2f numbers, EmissionSample &result) const;
    Color radiance() const { return emitted; }

    float pdf(Vec3 reference, Vec3 direction, Vec3 point) const;

    /// A point, uniform in area.
    Vec3 point(Point2f numbers) const;

    /// u and v of a point, wherever it lies beside the plane.
    Point2f coordinates(Vec3 point) const {
        const Vec3 from_corner = point - corner;
        const Vec3 across = cross(edge_u, edge_v);
        const float inverse_square = 1 / dot(across, across);
        return {dot(cross(from_corner, edge_v), across) * inverse_square,
                dot(cross(edge_u, from_corner), across) * inverse_square};
    }

    /// The solid angle by which it is sampled from there; 0 if it is sampled by area.
    float sampled_solid_angle(Vec3 reference) const;

    /// Whether it is sampled by solid angle, mostly: it has a parametrization for that, and is nearer than its longer
    /// edge is long. From farther away the weights of samples by area differ little, and others take much longer to
    /// draw.
    bool is_near(Vec3 reference) const {
        const bool is_triangle = outline == Outline::Triangle;
        const Vec3 to_middle = corner + (edge_u + edge_v) * (is_triangle ? 1 / 3.0f : 0.5f) - reference;
        const float square_u = dot(edge_u, edge_u);
        const float square_v = dot(edge_v, edge_v);
        return (dot(to_middle, to_middle) < (square_u > square_v ? square_u : square_v)) &
               (is_triangle | (outline == Outline::Rectangle));
    }

    /// The u and v of a point that is uniform in area; of the first kind, where it is no ring.
    Point2f sample_polygon(Point2f numbers) const {
        const Point2f folded = warp::triangle(numbers);
        const bool is_triangle = outline == Outline::Triangle;
        return {is_triangle ? folded.u : numbers.u, is_triangle ? folded.v : numbers.v};
    }
    Point2f sample_area(Point2f numbers) const;

    /// How a point of it is seen.
    struct Seen {
        float cosine;   ///< At the emitter; at most 0 if it shows its back. The rest is then meaningless.
        Vec3 to_light;  ///< Unit length.
        Vec3 end;       ///< The point, clear of the surface.
        float area_pdf; ///< Per solid angle, of points that are uniform in area.
    };
    Seen seen(Vec3 reference, Point2f uv) const {
        const Vec3 from_corner = edge_u * uv.u + edge_v * uv.v;
        const Vec3 point = corner + from_corner;
        const Vec3 difference = point - reference;
        const float squared_distance = dot(difference, difference);
        const float distance = std::sqrt(squared_distance);
        const float cosine = -dot(difference, normal) / distance;
        // From area to solid angle: dw = cos dA / r^2.
        return {cosine, difference * (1 / distance),
                point + normal * clearance_of_emitter(point, from_corner, distance),
                squared_distance / (cosine * area)};
    }

  private:
    // Likewise by solid angle, which it sets: to 0 if the point is uniform in area all the same.
    Point2f sample_solid_angle(Vec3 reference, Point2f numbers, float &solid_angle) const;
};

/// From a corner and its two neighbours, given in the object's space and in the order that is counter-clockwise as the
/// front sees it. The outline is a triangle or a parallelogram, which may turn out to be a rectangle.
FlatEmitter flat_emitter(const Affine &world_from_object, Vec3 corner, Vec3 next, Vec3 previous,
                         FlatEmitter::Outline outline, Color radiance);

FlatEmitter disk_emitter(const Affine &world_from_object, const Disk &disk, Color radiance);

} // namespace vantor
