// Half groups: what the error of a pixel's mean is estimated from.
#pragma once

#include "libvantor/base/sample_range.h"

namespace vantor {

inline constexpr int samples_per_half = samples_per_group / 2;

/// Sums over the halves of a pixel's groups of samples, of the mean luminance of each.
///
/// Samples of a pixel are stratified, so that their own variance overestimates the error of their mean, by up to a
/// factor of two. Halves of groups are stratified in themselves: how they differ is the better estimate.
struct HalfSums {
    double means = 0;
    double squares = 0; ///< Of the means.

    void add(double mean) {
        means += mean;
        squares += mean * mean;
    }
    void add(const HalfSums &later) {
        means += later.means;
        squares += later.squares;
    }

    /// How many halves of groups so many samples complete; an incomplete one at the end does not count.
    static constexpr int halves_of(int samples) { return samples / samples_per_half; }

    double mean(int samples) const { return means / halves_of(samples); }
    /// Of one sample, by what it adds to the variance of their mean: with 16 samples or more.
    double variance(int samples) const {
        const double halves = halves_of(samples);
        const double differences = squares - means * means / halves;
        return differences > 0 ? samples_per_half * differences / (halves - 1) : 0;
    }
};

} // namespace vantor
