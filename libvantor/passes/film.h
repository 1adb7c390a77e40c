// Film: from the samples of a pixel to its value.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/warp.h"

namespace vantor {

/// One pixel: the mean of its samples.
///
/// The filter is a tent, two pixels wide. It is sampled, not weighted: a pixel's rays are spread like the tent and all
/// count alike, so that a pixel depends on nothing but its own samples, in whatever window and order pixels are made
/// (Ernst, Stamminger, Greiner, "Filter Importance Sampling", 2006).
class PixelFilm {
  public:
    /// Where in the picture a sample of the pixel (x, y) lies, in pixels.
    static Pair position(int x, int y, Pair numbers) {
        return {static_cast<float>(x) + 0.5f + warp::tent(numbers.u),
                static_cast<float>(y) + 0.5f + warp::tent(numbers.v)};
    }

    void add(Color radiance) {
        // Sums of very large radiances may overflow; one such sample must not make the pixel unusable.
        if (is_finite(radiance))
            sum += radiance;
        ++count;
    }

    Color mean() const { return sum * (1 / static_cast<float>(count)); }

  private:
    Color sum;
    int count = 0;
};

} // namespace vantor
