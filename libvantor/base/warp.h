// Warps: the unit square onto shapes, with their densities.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"

namespace vantor::warp {

/// Sine and cosine of an angle of at most pi/4 either way; the error is below 1e-7. Written out so that pictures are
/// the same with every mathematical library.
struct SineCosine {
    float sine;
    float cosine;
};
inline SineCosine sine_cosine(float angle) {
    // The series to the ninth and the tenth power.
    const float s = angle * angle;
    return {angle * (1 + s * (-1 / 6.0f + s * (1 / 120.0f + s * (-1 / 5040.0f + s * (1 / 362880.0f))))),
            1 + s * (-1 / 2.0f + s * (1 / 24.0f + s * (-1 / 720.0f + s * (1 / 40320.0f - s * (1 / 3628800.0f)))))};
}

/// Square to unit disk, keeping areas and neighbours. Shirley, Chiu, "A Low Distortion Map Between Disk and Square",
/// 1997. Density 1/pi. The x and y of the result are used.
inline Vec3 disk(Pair sample) {
    const float a = 2 * sample.u - 1;
    const float b = 2 * sample.v - 1;
    if (a == 0 && b == 0)
        return {};
    const bool a_is_radius = std::fabs(a) > std::fabs(b);
    const float radius = a_is_radius ? a : b;
    const SineCosine turn = sine_cosine((pi / 4) * (a_is_radius ? b / a : a / b));
    return a_is_radius ? Vec3{radius * turn.cosine, radius * turn.sine, 0}
                       : Vec3{radius * turn.sine, radius * turn.cosine, 0};
}

/// Malley's method: uniform disk, lifted. Density cos(theta)/pi around +Z. Pharr, Jakob, Humphreys, "Physically Based
/// Rendering", 4th ed., A.5.3.
inline Vec3 cosine_hemisphere(Pair sample) {
    Vec3 d = disk(sample);
    d.z = std::sqrt(std::max(0.0f, 1 - d.x * d.x - d.y * d.y));
    return d;
}
inline float cosine_hemisphere_density(float cosine) { return cosine * inverse_pi; }

/// Directions around +Z whose 1 - cosine is at most `height`, 0 < height <= 2: a cap of the unit sphere, by uniform
/// solid angle. The height is 1 - cos(cone angle), given so that small cones lose no digits.
inline Vec3 cone(Pair sample, float height) {
    const Vec3 d = disk(sample);
    // Archimedes: the height above the base is uniform; the disk's squared radius is.
    const float squared_radius = d.x * d.x + d.y * d.y;
    const float drop = height * squared_radius;
    const float stretch = std::sqrt(height * (2 - drop));
    return {d.x * stretch, d.y * stretch, 1 - drop};
}
inline float cone_density(float height) { return 1 / (2 * pi * height); }

/// Barycentric coordinates, uniform on a triangle; density 1/area. The square is folded along its diagonal, which keeps
/// more neighbours together than the square root does (Heitz, "A Low-Distortion Map Between Triangle and Square",
/// 2019).
inline Pair triangle(Pair sample) {
    if (sample.v > sample.u)
        return {0.5f * sample.u, sample.v - 0.5f * sample.u};
    return {sample.u - 0.5f * sample.v, 0.5f * sample.v};
}

/// An offset from -1 to 1 under the tent 1 - |x|, from a uniform number.
inline float tent(float sample) { return sample < 0.5f ? std::sqrt(2 * sample) - 1 : 1 - std::sqrt(2 - 2 * sample); }

} // namespace vantor::warp
