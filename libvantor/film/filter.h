// Filter: how the samples of a pixel are spread around its middle.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/description/imager.h"

#include <array>

namespace vantor {

/// Draws positions under a filter, which is the product of the same curve across and down. All samples then count
/// alike, so that a pixel depends on nothing but its own, in whatever window and order pixels are made (Ernst,
/// Stamminger, Greiner, "Filter Importance Sampling", 2006).
///
/// Over x = -1 to 1 from edge to edge, the curves are: the tent 1 - |x|; the box 1; the Gaussian with a standard
/// deviation of 1/3; and the 4-term window of Blackman and Harris (Harris, "On the Use of Windows for Harmonic Analysis
/// with the Discrete Fourier Transform", 1978).
class FilterSampler {
  public:
    explicit FilterSampler(const Filter &filter);

    /// Where in the picture a sample of the pixel (x, y) lies, in pixels.
    Point2f position(int x, int y, Point2f numbers) const {
        return {static_cast<float>(x) + 0.5f + offset(numbers.u), static_cast<float>(y) + 0.5f + offset(numbers.v)};
    }

    /// From the middle, in pixels, from a uniform number.
    float offset(float number) const;

    /// The curve, up to a factor; 0 outside.
    static double curve(Filter::Kind kind, double x);

  private:
    float from_table(float number) const;

    Filter::Kind kind;
    float radius;
    // Of a curve that has no inverse in closed form: its values at equal steps, between which it is straight, and its
    // integral up to there, as a fraction of the whole.
    static constexpr std::size_t cells = 256;
    std::array<float, cells + 1> heights{};
    std::array<float, cells + 1> cdf{};
};

} // namespace vantor
