// Medium: what fills a body, and how light is absorbed and scattered in it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/scattering/phase_function.h"

namespace vantor {

/// The same everywhere. Coefficients are per length, 0 or more.
struct Medium {
    Color sigma_a;
    Color sigma_s;
    HenyeyGreenstein phase{};

    Color sigma_t() const { return sigma_a + sigma_s; }

    /// The fraction of light that goes the distance unhindered (Beer-Lambert). The distance may be infinite.
    Color transmittance(float distance) const {
        const auto left = [&](float coefficient) { return coefficient > 0 ? std::exp(-coefficient * distance) : 1.0f; };
        const Color sum = sigma_t();
        return {left(sum.r), left(sum.g), left(sum.b)};
    }

    /// Whether light is scattered within a distance, and where; the weight is its throughput over the pdf of the
    /// outcome.
    ///
    /// A random channel decides how far the light goes, in proportion to what the path still carries of each; the pdf
    /// is the mean over all three, with the same weights (the balance heuristic over channels: Wilkie et al., "Hero
    /// Wavelength Spectral Sampling", 2014). So what is carried never grows in sum. Where nothing is scattered, nothing
    /// is left to chance.
    struct DistanceSample {
        bool is_scattered;
        float distance;
        Color weight;
        float pdf; ///< Per length, if it is scattered.
    };
    DistanceSample sample_distance(float distance, Point2f u, Color carried = {1, 1, 1}) const {
        if (is_black(sigma_s))
            return {false, distance, transmittance(distance), 0};
        const Color sum = sigma_t();
        const Color chances = chances_of(carried);
        const float coefficient = u.v < chances.r ? sum.r : u.v < chances.r + chances.g ? sum.g : sum.b;
        const float reached = coefficient > 0 ? -std::log1p(-u.u) / coefficient : INFINITY;
        if (reached < distance) {
            const Color left = transmittance(reached);
            const float pdf = sum_of(chances * sum * left);
            return {true, reached, pdf > 0 ? sigma_s * left * (1 / pdf) : Color{}, pdf};
        }
        const Color left = transmittance(distance);
        const float probability = sum_of(chances * left);
        return {false, distance, probability > 0 ? left * (1 / probability) : Color{}, 0};
    }

    /// The pdf per length with which sample_distance() finds that light is scattered there.
    float distance_pdf(float distance, Color carried) const {
        return sum_of(chances_of(carried) * sigma_t() * transmittance(distance));
    }

  private:
    static float sum_of(Color c) { return c.r + c.g + c.b; }

    static Color chances_of(Color carried) {
        const float sum = sum_of(carried);
        constexpr float third = 1 / 3.0f;
        return sum > 0 && std::isfinite(sum) ? carried * (1 / sum) : Color{third, third, third};
    }
};

/// The media that a point lies in, as indexes. The medium of the innermost body counts; it is the last. Bodies may
/// overlap: leaving one does not leave the others.
class MediumStack {
  public:
    static constexpr int none = -1;

    int innermost() const { return count > 0 ? inside[count - 1].medium : none; }

    /// A body has no effect if more than `capacity` different media lie in each other there.
    void enter(int medium) {
        if (count > 0 && inside[count - 1].medium == medium)
            ++inside[count - 1].times;
        else if (count < capacity)
            inside[count++] = {static_cast<std::int16_t>(medium), 1};
    }

    /// Leaves the innermost body of that medium; no effect outside of all of them.
    void leave(int medium) {
        for (int i = count - 1; i >= 0; --i)
            if (inside[i].medium == medium) {
                if (--inside[i].times > 0)
                    return;
                for (int j = i; j + 1 < count; ++j)
                    inside[j] = inside[j + 1];
                --count;
                return;
            }
    }

  private:
    struct Inside {
        std::int16_t medium;
        std::int16_t times; // how many bodies of it lie in each other
    };
    static constexpr int capacity = 7;

    Inside inside[capacity]{};
    std::int16_t count = 0;
};

} // namespace vantor
