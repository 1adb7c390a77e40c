// Film: from the samples of a pixel to its values.
#pragma once

#include "libvantor/description/imager.h"
#include "libvantor/film/aov_sample.h"

namespace vantor {

/// One pixel, all of whose samples count alike.
class PixelFilm {
  public:
    void add(Color radiance) {
        // Sums of very large radiances may overflow; one such sample must not make the pixel unusable.
        if (is_finite(radiance)) {
            red.add(radiance.r);
            green.add(radiance.g);
            blue.add(radiance.b);
        }
        ++count;
    }

    void add_aovs(const AovSample &aovs) {
        // The film has taken the sample's radiance before.
        if (count == 1)
            object = aovs.object;
        if (!aovs.is_hit)
            return;
        ++hits;
        albedo.add(aovs.albedo.r, aovs.albedo.g, aovs.albedo.b);
        normal.add(aovs.normal.x, aovs.normal.y, aovs.normal.z);
        position.add(aovs.position.x, aovs.position.y, aovs.position.z);
        depth += aovs.depth;
    }

    /// 0 where there is nothing. Normals, depths and positions are means over the samples that hit something; albedo,
    /// like the colour, over all.
    Color value(Aov aov) const {
        switch (aov) {
        case Aov::Color:
            break;
        case Aov::Albedo:
            return albedo.over(count);
        case Aov::Normal: {
            const double length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
            return length > 0 ? normal.over(length) : Color{};
        }
        case Aov::Depth: {
            const auto mean = static_cast<float>(hits > 0 ? depth / hits : 0);
            return {mean, mean, mean};
        }
        case Aov::Position:
            return hits > 0 ? position.over(hits) : Color{};
        case Aov::ObjectId: {
            const auto id = static_cast<float>(object);
            return {id, id, id};
        }
        case Aov::Variance:
            return {red.variance_of_mean(count), green.variance_of_mean(count), blue.variance_of_mean(count)};
        }
        return {red.mean(count), green.mean(count), blue.mean(count)};
    }

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

        void add(double a, double b, double c) {
            x += a;
            y += b;
            z += c;
        }
        Color over(double divisor) const {
            return {static_cast<float>(x / divisor), static_cast<float>(y / divisor), static_cast<float>(z / divisor)};
        }
    };

    Moments red;
    Moments green;
    Moments blue;
    int count = 0;

    Sum albedo;
    Sum normal;
    Sum position;
    double depth = 0;
    int hits = 0;
    std::int64_t object = 0; // of the first sample; 0 for none
};

} // namespace vantor
