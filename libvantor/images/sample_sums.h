// Sample sums: what a pixel's value is made of, so that samples of several passes can become one picture.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/sample_range.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

namespace vantor {

/// How the samples of a pixel become its value.
enum class Reduction {
    Radiance,         ///< The mean of the radiances of all paths.
    RadianceVariance, ///< The variance of that mean.
    RadianceOfHits,   ///< The same mean, to which the samples that hit nothing add nothing.
    Mean,             ///< Over all samples, of which those that hit nothing count as 0.
    MeanOfHits,       ///< Over the samples that hit something.
    Direction,        ///< Likewise, of unit length.
    First,            ///< The first sample's: values in between would mean nothing.
};

/// In the order of Reduction.
inline constexpr std::string_view reduction_names[] = {
    "radiance", "radiance_variance", "radiance_of_hits", "mean", "mean_of_hits", "direction", "first"};

/// Of a name; nothing if there is none such.
constexpr std::optional<Reduction> reduction_named(std::string_view name) {
    for (std::size_t i = 0; i < std::size(reduction_names); ++i)
        if (reduction_names[i] == name)
            return static_cast<Reduction>(i);
    return {};
}

/// Three sums over samples of a pixel. Floats would lose what a sample adds to the sum of a million others.
struct ColorSum {
    double r = 0;
    double g = 0;
    double b = 0;

    void add(Color c) {
        r += c.r;
        g += c.g;
        b += c.b;
    }
    void add(const ColorSum &other) {
        r += other.r;
        g += other.g;
        b += other.b;
    }
    double length() const { return std::sqrt(r * r + g * g + b * b); }
    Color over(double divisor) const {
        if (!(divisor > 0))
            return {};
        return {static_cast<float>(r / divisor), static_cast<float>(g / divisor), static_cast<float>(b / divisor)};
    }
};

/// What one AOV of a pixel is made of.
struct SampleSums {
    ColorSum sum;
    ColorSum squares; ///< Of the radiance alone.
    double hits = 0;  ///< How many samples have a value.

    /// Of so many samples that all have the value.
    static SampleSums of(Color value, int count) {
        const double n = count;
        return {{n * value.r, n * value.g, n * value.b}, {}, n};
    }

    /// Of further samples.
    void add(const SampleSums &later, Reduction reduction) {
        if (reduction == Reduction::First)
            return;
        sum.add(later.sum);
        squares.add(later.squares);
        hits += later.hits;
    }

    /// By that many samples; 0 where there is nothing.
    Color value(Reduction reduction, int count) const {
        switch (reduction) {
        case Reduction::RadianceVariance:
            return {variance_of_mean(sum.r, squares.r, count), variance_of_mean(sum.g, squares.g, count),
                    variance_of_mean(sum.b, squares.b, count)};
        case Reduction::MeanOfHits:
            return sum.over(hits);
        case Reduction::Direction:
            return sum.over(sum.length());
        case Reduction::First:
            return sum.over(1);
        case Reduction::Radiance:
        case Reduction::RadianceOfHits:
        case Reduction::Mean:
            break;
        }
        return sum.over(count);
    }

  private:
    // Of one sample nothing is known. Rounding may make the difference negative.
    static float variance_of_mean(double sum, double squares, int count) {
        const double n = count;
        return count < 2 ? 0.0f : static_cast<float>(std::max(0.0, squares - sum * sum / n) / (n * (n - 1)));
    }
};
static_assert(sizeof(SampleSums) == 7 * sizeof(double), "files are written straight from the sums");

/// The sums of a whole window, row after row from the top: what a pass has made of a larger picture's samples.
struct PartSums {
    SampleRange samples;
    Reduction reduction;
    std::vector<SampleSums> pixels;

    /// What comes next of the same window. The samples then are those of both.
    void add(const PartSums &later) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i].add(later.pixels[i], reduction);
        samples.end = later.samples.end;
    }
    Color value(std::size_t pixel) const { return pixels[pixel].value(reduction, samples.count()); }
};

} // namespace vantor
