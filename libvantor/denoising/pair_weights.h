// Pair weights: how alike two pixels are.
#pragma once

#include "libvantor/denoising/noisy_pixels.h"

#include <span>

namespace vantor {

/// From one pixel to another.
struct Offset {
    int x;
    int y;
};

/// Pixels are compared up to this distance.
inline constexpr int pair_radius = 7;

/// All within the radius but the pixel itself, in the order in which sums are made.
std::span<const Offset> offsets();

/// Of pairs of the pixels x0 <= x < x1 of a row and those at the offset from each, which all exist: from 0, unlike,
/// to 1. Both pixels of a pair find the same weight, bit by bit.
///
/// It is the product of two. One is of a test whether the irradiances can be told apart: the square of their
/// difference over the sum of the variances of their errors, as in Welch's test (Sakai, Freude, Auzinger, Hahn,
/// Wimmer, "A Statistical Approach to Monte Carlo Denoising", 2024). The other is that of a joint bilateral filter,
/// whose guides are albedo, normal and depth (Petschnigg, Agrawala, Hoppe, Szeliski, Cohen, Toyama, "Digital
/// Photography with Flash and No-Flash Image Pairs", 2004). Where guides are noisy themselves, in pixels at edges or
/// out of focus, their differences count as far as they are larger than that (Rousselle, Manzi, Zwicker, "Robust
/// Denoising using Feature and Color Information", 2013). Both fall from 1 to 0 as (1 - x)^2, which has no tail.
void pair_weights(const NoisyPixels &pixels, int y, int x0, int x1, const Offset &offset, float *weights);

} // namespace vantor
