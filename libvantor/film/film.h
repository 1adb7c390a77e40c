// Film: from the samples of a pixel to its values.
#pragma once

#include "libvantor/film/aov_table.h"

namespace vantor {

/// One pixel, all of whose samples count alike.
class PixelFilm {
  public:
    /// A sample without AOVs.
    void add(Color radiance) {
        // Sums of very large radiances may overflow; one such sample must not make the pixel unusable.
        if (is_finite(radiance)) {
            radiances.add(radiance);
            squares.r += static_cast<double>(radiance.r) * radiance.r;
            squares.g += static_cast<double>(radiance.g) * radiance.g;
            squares.b += static_cast<double>(radiance.b) * radiance.b;
        }
        ++count;
    }

    /// A sample with AOVs. All samples of a pixel have them, or none.
    void add(Color radiance, const AovSample &seen);

    /// Further samples, added up.
    void add(const PixelFilm &later);

    int samples() const { return count; }

    /// What the value is made of.
    SampleSums sums(Aov aov) const;

    /// 0 where there is nothing.
    Color value(Aov aov) const { return sums(aov).value(row_of(aov).reduction, count); }

  private:
    ColorSum radiances;
    ColorSum squares; // of the radiances
    int count = 0;

    std::array<ColorSum, aov_count>
        values; // of the samples that hit something; of Reduction::First the first one alone
    int hits = 0;
};

} // namespace vantor
