// Light bounds: where the light of one or more lights comes from and where it goes, roughly; to tell how much of it may
// arrive at a point.
#pragma once

#include "libvantor/base/numbers.h"

#include <span>

namespace vantor {

/// Of finite lights: all of them lie in the box, and send light only into directions at most the angle of emission away
/// from a normal, all of which lie in the cone around the axis. Conty Estevez, Kulla, "Importance Sampling of Many
/// Lights with Adaptive Tree Splitting", 2018, section 4.
struct LightBounds {
    Vec3 center;        ///< Of the box, whose edges are parallel to the axes.
    Vec3 half_extent;   ///< From its centre to its faces.
    Vec3 axis;          ///< Unit length.
    float cos_normals;  ///< Of the angle of the cone; -1 if normals are everywhere.
    float cos_emission; ///< Of the angle of emission; 0 of a surface.
    float intensity; ///< Luminance: of a point in the brightest direction, of a surface radiance times area. 0: black.
};

/// What bounds them all; there is at least one. Rounding never makes it too small.
LightBounds united(std::span<const LightBounds> parts);

/// Of an infinite light, as luminance integrated over all directions.
struct InfiniteLightBounds {
    Vec3 vector;   ///< Of the radiance times the unit vectors to where it comes from: the vector irradiance.
    float fluence; ///< Of the radiance: at least the length of the vector.

    /// How much the radiance differs between directions, roughly: v / (1 + v) of its variance over the square of its
    /// mean, v. 0 if it is the same everywhere, close to 1 if it is all in a few directions.
    float contrast = 1;

    /// The irradiance of a surface of that normal, roughly; above 0. Without a normal, the fluence.
    ///
    /// Exactly it is (n V + A) / 2, with A the integral of the radiance times the absolute cosine: the length of n V if
    /// all light comes from one direction, half of the fluence if it comes evenly from everywhere. How nearly it is one
    /// or the other is told by the length of V.
    float irradiance(Vec3 normal) const {
        if (dot(normal, normal) == 0)
            return fluence;
        constexpr float least = 1e-6f; // of a sun that has set, which still shines over the edge of rounding
        const float along = dot(normal, vector);
        const float concentration = std::min(length(vector) / fluence, 1.0f);
        const float both_sides = concentration * std::fabs(along) + (1 - concentration) * 0.5f * fluence;
        return std::max(0.5f * (along + both_sides), least * fluence);
    }
};

} // namespace vantor
