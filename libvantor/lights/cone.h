// Cone: directions around an axis, measured by one minus the cosine, which keeps its digits in narrow cones; and the
// points that a spot reaches.
#pragma once

#include "libvantor/base/numbers.h"

namespace vantor {

/// One minus the cosine of the angle between two directions of unit length. Computed from their difference, as one
/// minus their product has few digits where they are close.
inline float one_minus_cos_between(Vec3 a, Vec3 b) { return 0.5f * dot(a - b, a - b); }

/// One minus the cosine of an angle in radians, without the loss of digits of small ones.
inline double one_minus_cos(double angle) {
    const double sine = std::sin(0.5 * angle);
    return 2 * sine * sine;
}

/// A stretch of a ray, by distances from its origin; empty unless `from` is below `to`, which may be infinite.
struct RayPart {
    float from;
    float to;

    bool is_empty() const { return !(from < to); }
};

/// The points that a spot may light: those seen from the apex at most so far from the axis, less than a right angle.
struct SolidCone {
    Vec3 apex;
    Vec3 axis; ///< Unit length.
    float sine;
    float cosine; ///< Of the angle from the axis to the edge; above 0.

    /// The points of a part of a ray that lie inside, by the roots of a quadratic: relative to the point of the ray
    /// next to the apex, so that digits last wherever the ray begins. Rounding may move the ends.
    RayPart part_of(const Ray &ray, RayPart whole) const {
        const Vec3 to_apex = apex - ray.origin;
        const float nearest = dot(to_apex, ray.direction);
        const Vec3 from_apex = ray.direction * nearest - to_apex;
        // At the distance t from there, the point is so far along the axis, and so far from it:
        const float along = dot(axis, ray.direction);
        const float start = dot(axis, from_apex);
        const Vec3 across = ray.direction - axis * along;
        const Vec3 start_across = from_apex - axis * start;
        // It is inside one of the cone's two halves where a t^2 + 2 b t + c >= 0.
        const float squared_sine = sine * sine;
        const float squared_cosine = cosine * cosine;
        const float a = squared_sine * along * along - squared_cosine * dot(across, across);
        const float b = squared_sine * along * start - squared_cosine * dot(across, start_across);
        const float c = squared_sine * start * start - squared_cosine * dot(start_across, start_across);
        const float discriminant = b * b - a * c;
        if (a < 0 && discriminant < 0)
            return {0, 0};
        const float q = -(b + std::copysign(std::sqrt(std::max(0.0f, discriminant)), b));
        const float root = q / a;
        const float other = q != 0 ? c / q : 0.0f;
        RayPart inside{std::min(root, other), std::max(root, other)};
        if (a < 0) {
            if (start + along * (0.5f * inside.from + 0.5f * inside.to) < 0)
                return {0, 0}; // of the half behind the apex
        } else if (along > 0) {
            inside = {inside.to, INFINITY};
        } else {
            inside = {-INFINITY, inside.from};
        }
        // Ends that are no numbers, of rays that run along the edge, leave the part as it was.
        return {std::max(whole.from, nearest + inside.from), std::min(whole.to, nearest + inside.to)};
    }
};

} // namespace vantor
