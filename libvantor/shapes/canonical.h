// Canonical: the spaces in which formulas describe round shapes, and rays in them.
#pragma once

#include "libvantor/parameters/reader.h"
#include "libvantor/shapes/surface_parameters.h"

#include <array>
#include <concepts>
#include <cstdint>

namespace vantor {

/// Three doubles: formulas of round shapes lose too many digits in floats.
struct Double3 {
    double x = 0;
    double y = 0;
    double z = 0;

    explicit Double3(Vec3 v) : x(v.x), y(v.y), z(v.z) {}
    constexpr Double3(double its_x, double its_y, double its_z) : x(its_x), y(its_y), z(its_z) {}
    constexpr Double3() = default;
};

constexpr Double3 operator+(Double3 a, Double3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
constexpr Double3 operator-(Double3 a, Double3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
constexpr Double3 operator*(Double3 a, double s) { return {a.x * s, a.y * s, a.z * s}; }
constexpr double dot(Double3 a, Double3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Double3 cross(Double3 a, Double3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Double3 unit(Double3 a) { return a * (1 / std::sqrt(dot(a, a))); }
inline Vec3 to_float(Double3 a) { return {static_cast<float>(a.x), static_cast<float>(a.y), static_cast<float>(a.z)}; }

/// The direction has any length but 0.
struct CanonicalRay {
    Double3 origin;
    Double3 direction;

    Double3 at(double t) const { return origin + direction * t; }

    /// Where it comes nearest to a point. Formulas that start from there do not cancel for rays from far away.
    double nearest_to(Double3 point) const { return dot(point - origin, direction) / dot(direction, direction); }
};

/// Where a ray goes through a surface.
struct Crossing {
    double t;           ///< In units of the ray's direction.
    Double3 normal;     ///< Outwards, of any length, in canonical space.
    std::uint32_t part; ///< Of the shape: its primitive.
};

/// All crossings of a ray, the nearest first.
class Crossings {
  public:
    void add(const Crossing &crossing) {
        std::size_t at = count++;
        for (; at > 0 && all[at - 1].t > crossing.t; --at)
            all[at] = all[at - 1];
        all[at] = crossing;
    }
    const Crossing *begin() const { return all.data(); }
    const Crossing *end() const { return all.data() + count; }

  private:
    std::array<Crossing, 4> all; // a quartic has no more
    std::size_t count = 0;
};

/// An affine map from a canonical space into another, with its inverse.
class CanonicalMap {
  public:
    /// The canonical Y axis becomes `axis`, a vector; lengths across it are scaled by `across`. For an axis along +Y
    /// nothing is turned; u, which runs from canonical +Z by +X, then starts as that of a sphere does.
    CanonicalMap(const VtVector3 &origin, const VtVector3 &axis, double across);

    /// First this, then the other.
    CanonicalMap then(const Affine &outer) const;

    CanonicalRay ray_back(Vec3 origin, Vec3 direction) const {
        return {point_back(Double3(origin)), direction_back(Double3(direction))};
    }
    Double3 point_back(Double3 p) const { return direction_back(p - offset); }
    Double3 direction_back(Double3 d) const { return {dot(d, normal_x), dot(d, normal_y), dot(d, normal_z)}; }
    Double3 direction(Double3 d) const { return image_x * d.x + image_y * d.y + image_z * d.z; }
    Double3 point(Double3 p) const { return direction(p) + offset; }

    /// Of normals: the outside of a surface stays outside.
    Double3 normal(Double3 n) const { return normal_x * n.x + normal_y * n.y + normal_z * n.z; }

    /// The corners of a box around a shape, from its support function: the greatest dot product of any of its points
    /// with a vector of canonical space.
    template <class Support> std::array<Double3, 2> bounds(Support support) const {
        std::array<double, 3> low{};
        std::array<double, 3> high{};
        const std::array<Double3, 3> axes{Double3{image_x.x, image_y.x, image_z.x},
                                          Double3{image_x.y, image_y.y, image_z.y},
                                          Double3{image_x.z, image_y.z, image_z.z}};
        for (std::size_t i = 0; i < 3; ++i) {
            high[i] = support(axes[i]);
            low[i] = -support(axes[i] * -1);
        }
        return {offset + Double3{low[0], low[1], low[2]}, offset + Double3{high[0], high[1], high[2]}};
    }

    Double3 image_x, image_y, image_z; ///< Of the canonical axes.
    Double3 offset;                    ///< Where the canonical origin goes.

  private:
    CanonicalMap() = default;
    void invert();

    Double3 normal_x, normal_y, normal_z; // the rows of the transposed inverse
};

/// How far around the canonical Y axis a point lies, from 0 at +Z by +X to 1.
inline float turn_of(Double3 p) {
    const auto turn = static_cast<float>(std::atan2(p.x, p.z)) * (0.5f * inverse_pi);
    return turn < 0 ? turn + 1 : turn;
}

/// How a point moves with its turn.
constexpr Double3 along_turn(Double3 p) { return Double3{p.z, 0, -p.x} * (2 * static_cast<double>(pi)); }

/// Away from the Y axis, of unit length; zero on it.
inline Double3 away_from_axis(Double3 p) {
    const double distance = std::hypot(p.x, p.z);
    return distance > 0 ? Double3{p.x / distance, 0, p.z / distance} : Double3();
}

/// A shape of a few formulas in its canonical space. on_surface() takes a point next to a part to it.
template <class Kind>
concept Analytic = requires(const Kind &kind, const CanonicalRay &ray, Double3 along, std::uint32_t part) {
    { kind.map } -> std::convertible_to<CanonicalMap>;
    { crossings(kind, ray) } -> std::same_as<Crossings>;
    { support(kind, along) } -> std::same_as<double>;
    { on_surface(kind, part, along) } -> std::same_as<Double3>;
};

/// A box around it under a further map.
template <Analytic Kind> std::array<Double3, 2> bounds_of(const Kind &kind, const CanonicalMap &map) {
    return map.bounds([&](Double3 along) { return support(kind, along); });
}

template <Analytic Kind> float reach_of(const Kind &kind) {
    const auto [low, high] = bounds_of(kind, kind.map);
    return std::max(largest_coordinate(to_float(low)), largest_coordinate(to_float(high)));
}

} // namespace vantor
