// Medium: what fills a body, and how light is absorbed and scattered in it.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/warp.h"

namespace vantor {

/// The same everywhere. Coefficients are per length, 0 or more; g is the mean cosine of scattering, between -1 and 1.
struct Medium {
    Color sigma_a;
    Color sigma_s;
    float g = 0;

    Color sigma_t() const { return sigma_a + sigma_s; }

    /// The fraction of light that goes the distance unhindered (Beer-Lambert). The distance may be infinite.
    Color transmittance(float distance) const {
        const auto left = [&](float coefficient) { return coefficient > 0 ? std::exp(-coefficient * distance) : 1.0f; };
        const Color sum = sigma_t();
        return {left(sum.r), left(sum.g), left(sum.b)};
    }

    /// Where light is scattered next, or that it first goes the whole distance. Either way, weight is what it brings
    /// over the pdf of the outcome.
    ///
    /// One channel, by chance, says how far; the pdf is that of all three, so that no channel's weight exceeds 3
    /// (the balance heuristic over channels: Wilkie et al., "Hero Wavelength Spectral Sampling", 2014).
    struct DistanceSample {
        bool is_scattered;
        float distance;
        Color weight;
    };
    DistanceSample sample_distance(float distance, Point2f numbers) const {
        const Color sum = sigma_t();
        const float of_channel = numbers.v < 1 / 3.0f ? sum.r : numbers.v < 2 / 3.0f ? sum.g : sum.b;
        const float reached = of_channel > 0 ? -std::log1p(-numbers.u) / of_channel : INFINITY;
        if (reached < distance) {
            const Color left = transmittance(reached);
            const Color pdfs = sum * left;
            const float pdf = (pdfs.r + pdfs.g + pdfs.b) * (1 / 3.0f);
            return {true, reached, pdf > 0 ? sigma_s * left * (1 / pdf) : Color{}};
        }
        const Color left = transmittance(distance);
        const float chance = (left.r + left.g + left.b) * (1 / 3.0f);
        return {false, distance, chance > 0 ? left * (1 / chance) : Color{}};
    }

    /// The phase function, per solid angle: value and pdf of sample_direction() at once. The cosine is that between
    /// the way before and after. Henyey, Greenstein, "Diffuse Radiation in the Galaxy", 1941.
    float phase(float cosine) const {
        const float square = 1 + g * g - 2 * g * cosine;
        return (1 - g * g) / (4 * pi * square * std::sqrt(std::max(square, 1e-12f)));
    }

    /// The way after scattering.
    Vec3 sample_direction(Vec3 before, Point2f numbers) const {
        float cosine = 1 - 2 * numbers.u;
        if (std::fabs(g) > 1e-3f) {
            const float root = (1 - g * g) / (1 + g - 2 * g * numbers.u);
            cosine = std::clamp((1 + g * g - root * root) / (2 * g), -1.0f, 1.0f);
        }
        const float sine = std::sqrt(std::max(0.0f, 1 - cosine * cosine));
        const warp::SineCosine turn = warp::sine_cosine_of_turn(numbers.v);
        return Frame(before).world_from_local({sine * turn.cosine, sine * turn.sine, cosine});
    }
};

/// The media that a point lies in, as indexes: that of the innermost body is last and counts. Bodies may overlap; each
/// is left by itself.
class MediumStack {
  public:
    static constexpr int none = -1;

    int innermost() const { return count > 0 ? inside[count - 1].medium : none; }

    /// Where more different media lie in each other than there is room for, a body has no effect.
    void enter(int medium) {
        if (count > 0 && inside[count - 1].medium == medium)
            ++inside[count - 1].times;
        else if (count < capacity)
            inside[count++] = {static_cast<std::int16_t>(medium), 1};
    }

    /// Leaves the innermost body of that medium; nothing happens outside of all of them.
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
        std::int16_t times; // so many bodies of it, one in the other
    };
    static constexpr int capacity = 7;

    Inside inside[capacity]{};
    std::int16_t count = 0;
};

} // namespace vantor
