// Warps: the unit square onto shapes, with their pdfs.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"

#include <array>

namespace vantor::warp {

/// Sine and cosine of a whole turn times a number in [0, 1); the error is below 1e-6. Written out, without a branch, so
/// that it is quick and the same with every mathematical library.
struct SineCosine {
    float sine;
    float cosine;
};
inline SineCosine sine_cosine_of_turn(float turn) {
    // The Taylor series of half the angle, which lies within a quarter turn of 0; then the double angle, half a turn
    // on.
    const float x = pi * (turn - 0.5f);
    const float q = x * x;
    const float sine =
        x *
        (1 + q * (-1 / 6.0f + q * (1 / 120.0f + q * (-1 / 5040.0f + q * (1 / 362880.0f + q * (-1 / 39916800.0f))))));
    const float cosine =
        1 +
        q * (-1 / 2.0f +
             q * (1 / 24.0f + q * (-1 / 720.0f + q * (1 / 40320.0f + q * (-1 / 3628800.0f + q * (1 / 479001600.0f))))));
    return {-2 * sine * cosine, 2 * sine * sine - 1};
}

/// Uniform on the unit disk: pdf 1/pi. The x and y of the result are used.
inline Vec3 disk(Point2f sample) {
    const SineCosine turn = sine_cosine_of_turn(sample.v);
    const float radius = std::sqrt(sample.u);
    return {radius * turn.cosine, radius * turn.sine, 0};
}

/// Malley's method: uniform disk, lifted; pdf cos(theta)/pi around +Z. Pharr, Jakob, Humphreys, "Physically Based
/// Rendering", 4th ed., A.5.3.
inline Vec3 cosine_hemisphere(Point2f sample) {
    const Vec3 d = disk(sample);
    return {d.x, d.y, std::sqrt(1 - sample.u)};
}
inline float cosine_hemisphere_pdf(float cosine) { return cosine * inverse_pi; }

/// Directions of a cone around +Z, by uniform solid angle. The cone is given by 1 - cos(half angle), above 0 and at
/// most 2, so that small cones lose no digits.
inline Vec3 cone(Point2f sample, float one_minus_cos_theta) {
    // Archimedes: the area of a cap of the sphere goes with its height.
    const float drop = one_minus_cos_theta * sample.u;
    const float radius = std::sqrt(drop * (2 - drop));
    const SineCosine turn = sine_cosine_of_turn(sample.v);
    return {radius * turn.cosine, radius * turn.sine, 1 - drop};
}
inline float cone_pdf(float one_minus_cos_theta) { return 1 / (2 * pi * one_minus_cos_theta); }

/// Barycentric coordinates, uniform on a triangle; pdf 1/area. The square is folded along its diagonal, which keeps
/// more neighbours together than the square root does (Heitz, "A Low-Distortion Map Between Triangle and Square",
/// 2019).
inline Point2f triangle(Point2f sample) {
    if (sample.v > sample.u)
        return {0.5f * sample.u, sample.v - 0.5f * sample.u};
    return {sample.u - 0.5f * sample.v, 0.5f * sample.v};
}

/// An offset from -1 to 1 under the tent 1 - |x|, from a uniform number.
inline float tent(float sample) { return sample < 0.5f ? std::sqrt(2 * sample) - 1 : 1 - std::sqrt(2 - 2 * sample); }

/// From 0 to 1 by a pdf that goes from a to b in a straight line; neither is below 0. Pharr, Jakob, Humphreys,
/// "Physically Based Rendering", 4th ed., 2.3.2; here and below, what is nowhere above 0 is sampled evenly.
inline float linear(float sample, float a, float b) {
    const float denominator = a + std::sqrt((1 - sample) * a * a + sample * b * b);
    return denominator > 0 ? std::min(sample * (a + b) / denominator, 1.0f) : sample;
}

/// Values at the corners of the unit square, 0 or more: at (0, 0), (1, 0), (0, 1) and (1, 1).
using BilinearPatch = std::array<float, 4>;

inline float mean(const BilinearPatch &patch) {
    return 0.25f * patch[0] + 0.25f * patch[1] + 0.25f * patch[2] + 0.25f * patch[3];
}

/// A point of the unit square, by a pdf in proportion to what is interpolated bilinearly: as above, 2.4.2.
inline Point2f bilinear(Point2f sample, const BilinearPatch &patch) {
    // Squares of the values themselves may overflow, or underflow.
    const float scale = mean(patch);
    if (!(scale > 0))
        return sample;
    const BilinearPatch p{patch[0] / scale, patch[1] / scale, patch[2] / scale, patch[3] / scale};
    const float v = linear(sample.v, p[0] + p[1], p[2] + p[3]);
    return {linear(sample.u, p[0] * (1 - v) + p[2] * v, p[1] * (1 - v) + p[3] * v), v};
}
inline float bilinear_pdf(Point2f point, const BilinearPatch &patch) {
    const float scale = mean(patch);
    const float upper = patch[0] * (1 - point.u) + patch[1] * point.u;
    const float lower = patch[2] * (1 - point.u) + patch[3] * point.u;
    return scale > 0 ? (upper * (1 - point.v) + lower * point.v) / scale : 0;
}

} // namespace vantor::warp
