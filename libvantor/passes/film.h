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
        if (is_finite(radiance)) {
            red += radiance.r;
            green += radiance.g;
            blue += radiance.b;
        }
        ++count;
    }

    Color mean() const {
        return {static_cast<float>(red / count), static_cast<float>(green / count), static_cast<float>(blue / count)};
    }

  private:
    // Sums of all samples. Floats would lose what a sample adds to the sum of a million others.
    double red = 0;
    double green = 0;
    double blue = 0;
    int count = 0;
};

} // namespace vantor
