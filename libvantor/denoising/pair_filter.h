// Pair filter: pixels that cannot be told apart share what they have, in pairs.
#pragma once

#include "libvantor/denoising/noisy_pixels.h"
#include "libvantor/denoising/pair_weights.h"

#include <span>

namespace vantor {

/// What each pixel's radiance gains from its pairs (pair_weights.h), for each of these irradiances, of surfaces with
/// the pixels' divisors: the brighter one of a pair loses what the darker one gains.
///
/// Weights of all pairs are scaled by a factor for each of their pixels, such that those of a pixel add up to 1,
/// nearly, and no more than that (Sinkhorn's iteration: Milanfar, "Symmetrizing Smoothing Filters", 2013).
///
/// As many rows as are given are done at once, which makes no difference to the gains: weights are kept for these rows
/// and for some around them. Throws Interrupted.
std::vector<Planes> pair_gains(const NoisyPixels &pixels, std::span<const Planes *const> irradiances, int rows_at_once,
                               const Interrupt &interrupt);

/// So many rows that the weights take 128 MiB at most; but no fewer than are worth while.
int rows_at_once(int width);

/// Of the factors. More of them bring the sums of weights nearer to 1, and each widens the radius.
inline constexpr int factor_iterations = 2;

/// How far around a pixel others make a difference to what it gains: it depends on its pairs, these on the factors of
/// both; and these, in each iteration, on those of their pairs.
inline constexpr int gain_radius = (factor_iterations + 2) * pair_radius;

} // namespace vantor
