// Spherical polygons: rectangles and triangles as a point sees them, sampled uniformly by solid angle.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"

namespace vantor {

/// The rectangle corner + u * edge_u + v * edge_v, u and v from 0 to 1. Ureña, Fajardo, King, "An Area-Preserving
/// Parametrization for Spherical Rectangles", 2013.
class SphericalRectangle {
  public:
    /// The edges are at right angles.
    SphericalRectangle(Vec3 reference, Vec3 corner, Vec3 edge_u, Vec3 edge_v);

    float solid_angle() const { return total; } ///< To about 1e-6.

    /// The u and v of a point that is uniform in solid angle.
    Point2f sample(Point2f numbers) const;

  private:
    float x0, x1, y0, y1, z0; // in the frame of the edges, with the reference at its origin; z0 is negative
    float b0, b1;             // the z of the normals of the planes through the edges along x
    float k;
    float total;
};

/// The triangle of three points. Arvo, "Stratified Sampling of Spherical Triangles", 1995; the solid angle by Van
/// Oosterom, Strackee, "The Solid Angle of a Plane Triangle", 1983.
class SphericalTriangle {
  public:
    SphericalTriangle(Vec3 reference, Vec3 corner, Vec3 edge_u, Vec3 edge_v);

    float solid_angle() const { return static_cast<float>(total); }

    /// The u and v of a point that is uniform in solid angle: corner + u * edge_u + v * edge_v.
    Point2f sample(Point2f numbers) const;

  private:
    // From the reference to the corners; sums of angles differ little, which takes doubles.
    struct Direction {
        double x, y, z;
    };
    static double dot(Direction a, Direction b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
    static Direction cross(Direction a, Direction b) {
        return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }
    static Direction direction(Direction v);
    static Direction across(Direction v, Direction axis); // what of it is perpendicular to the axis, of unit length
    static Direction turned(Direction axis, double cosine, Direction towards);

    Direction a, b, c; // unit length
    Direction to_corner, u, v;
    double total;
};

} // namespace vantor
