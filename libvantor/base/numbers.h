// Float vectors, frames and affine maps: what rendering computes with; and the conversions from the script's doubles.
#pragma once

#include "algebra/vt_transform_algebra.h"
#include "libvantor/base/color.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantor {

inline constexpr float pi = 3.14159265358979f;
inline constexpr float inverse_pi = 0.318309886183791f;

/// Three floats: a point, a direction, a normal.
struct Vec3 {
    float x = 0;
    float y = 0;
    float z = 0;
};

constexpr Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
constexpr Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
constexpr Vec3 operator*(float s, Vec3 a) { return a * s; }
constexpr float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline float length(Vec3 a) { return std::sqrt(dot(a, a)); }
inline Vec3 normalized(Vec3 a) { return a * (1.0f / length(a)); }
inline float largest_coordinate(Vec3 a) { return std::max({std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)}); }
inline bool is_finite(Vec3 a) { return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z); }

/// Whether it can be normalized: its squared length neither underflows nor overflows.
inline bool has_direction(Vec3 a) {
    const float square = dot(a, a);
    return square >= std::numeric_limits<float>::min() && square <= std::numeric_limits<float>::max();
}

/// The direction of a vector; the other, of unit length, if it has none.
inline Vec3 direction_of(Vec3 a, Vec3 otherwise) { return has_direction(a) ? normalized(a) : otherwise; }

/// The half line from the origin along the direction.
struct Ray {
    Vec3 origin;
    Vec3 direction; ///< Unit length.
};

/// An orthonormal frame around a unit normal, which is its Z.
/// Duff, Burgess, Christensen, Hery, Kensler, Liani, Villemin, "Building an Orthonormal Basis, Revisited", JCGT 2017.
struct Frame {
    Vec3 x;
    Vec3 y;
    Vec3 z;

    explicit Frame(Vec3 normal) : z(normal) {
        const float sign = std::copysign(1.0f, normal.z);
        const float a = -1.0f / (sign + normal.z);
        const float b = normal.x * normal.y * a;
        x = {1.0f + sign * normal.x * normal.x * a, sign * b, -sign * normal.x};
        y = {b, sign + normal.y * normal.y * a, -normal.y};
    }

    Vec3 world_from_local(Vec3 local) const { return x * local.x + y * local.y + z * local.z; }
    Vec3 local_from_world(Vec3 world) const { return {dot(world, x), dot(world, y), dot(world, z)}; }
};

/// A linear map of rows, v' = v M: the row vectors of M.
struct Linear {
    Vec3 row0{1, 0, 0};
    Vec3 row1{0, 1, 0};
    Vec3 row2{0, 0, 1};

    Vec3 operator()(Vec3 v) const { return row0 * v.x + row1 * v.y + row2 * v.z; }
};

inline Linear transposed(const Linear &m) {
    return {{m.row0.x, m.row1.x, m.row2.x}, {m.row0.y, m.row1.y, m.row2.y}, {m.row0.z, m.row1.z, m.row2.z}};
}

/// An affine map of points, p' = p M + offset, with the maps that go with it.
struct Affine {
    Linear linear;  ///< Of directions.
    Vec3 offset;    ///< Where the origin goes.
    Linear normals; ///< Of normals: the transposed inverse. The outside of a surface stays outside, mirrored or not.
    Linear inverse; ///< Of directions, back.
    float determinant = 1; ///< Of the linear map: negative if it mirrors.

    Vec3 point(Vec3 p) const { return linear(p) + offset; }
    Vec3 point_back(Vec3 p) const { return inverse(p - offset); }

    /// The factor by which it scales all lengths alike; 0 if it does not. Decided to a relative 1e-5.
    float uniform_scale() const;

    /// The least factor by which it scales a length; a bound from below, at most the square root of 3 too low.
    float least_scale() const;
};

Vec3 to_float(const VtVector3 &v);
Color to_color(const VtVector3 &components);

/// The transform has to be usable: see why_unusable().
Affine to_float(const VtTransform &transform);

/// Why points cannot be placed with the transform; null if they can: its entries are finite, its last column is
/// (0, 0, 0, 1), and it is not singular.
const char *why_unusable(const VtTransform &transform);

// Computed in the script's doubles.
VtVector3 difference(const VtVector3 &a, const VtVector3 &b);
constexpr double dot(const VtVector3 &a, const VtVector3 &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
constexpr VtVector3 cross(const VtVector3 &a, const VtVector3 &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
VtTransform identity();
VtVector3 transformed_point(const VtVector3 &p, const VtTransform &transform);
VtVector3 transformed_direction(const VtVector3 &d, const VtTransform &transform);

} // namespace vantor
