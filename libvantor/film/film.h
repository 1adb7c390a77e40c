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
            red.add(radiance.r);
            green.add(radiance.g);
            blue.add(radiance.b);
        }
        ++count;
    }

    /// A sample with AOVs. All samples of a pixel have them, or none.
    void add(Color radiance, const AovSample &seen);

    /// 0 where there is nothing.
    Color value(Aov aov) const;

  private:
    // Sums of all samples. Floats would lose what a sample adds to the sum of a million others.
    struct Moments {
        double sum = 0;
        double squares = 0;

        void add(double value) {
            sum += value;
            squares += value * value;
        }
        float mean(int of) const { return static_cast<float>(sum / of); }
        // Of one sample nothing is known. Rounding may make the difference negative.
        float variance_of_mean(int of) const {
            const double n = of;
            return of < 2 ? 0.0f : static_cast<float>(std::max(0.0, squares - sum * sum / n) / (n * (n - 1)));
        }
    };
    struct Sum {
        double x = 0;
        double y = 0;
        double z = 0;

        void add(Color c) {
            x += c.r;
            y += c.g;
            z += c.b;
        }
        double length() const { return std::sqrt(x * x + y * y + z * z); }
        Color over(double divisor) const {
            if (!(divisor > 0))
                return {};
            return {static_cast<float>(x / divisor), static_cast<float>(y / divisor), static_cast<float>(z / divisor)};
        }
    };

    Moments red;
    Moments green;
    Moments blue;
    int count = 0;

    std::array<Sum, aov_count> sums; // of the samples that hit something; of Reduction::First the first sample alone
    int hits = 0;
};

} // namespace vantor
