// Denoiser: a picture with less noise, of the same samples.
#include "libvantor/denoising/denoiser.h"

#include "libvantor/denoising/pair_weights.h"
#include "libvantor/denoising/rows.h"

#include <cmath>

namespace vantor {

namespace {

// Of the factors. More of them bring the sums of weights nearer to 1, and each widens the margin.
constexpr int iterations = 2;

// A pixel depends on its pairs, these on the factors of both; and these, in each iteration, on those of their pairs.
constexpr int margin = (iterations + 2) * pair_radius + variance_radius;

// Pairs of a row's pixels and others: the first pixel of each, how many there are, and their weights.
struct RowPairs {
    std::size_t first;
    std::size_t other;
    std::size_t count;
    float *weights;
};

class PairFilter {
  public:
    // The pixels have to outlive it.
    PairFilter(const NoisyPixels &of, const Interrupt &by) : pixels(of), interrupt(by) {
        const Plane plain(of.depth.size(), 1.0f);
        Plane sums(plain.size());
        factors = plain;
        for (int i = 0; i <= iterations; ++i) {
            add_weights(sums);
            if (i < iterations)
                for (std::size_t pixel = 0; pixel < sums.size(); ++pixel)
                    factors[pixel] /= std::sqrt(sums[pixel]);
        }
        limits = plain;
        for (std::size_t pixel = 0; pixel < sums.size(); ++pixel)
            limits[pixel] = std::min(1.0f, 1 / sums[pixel]);
    }

    // What each pixel's radiance gains from its pairs, if they have these irradiances.
    Planes gains(const Planes &irradiance) const {
        const Plane none(factors.size());
        Planes result{none, none, none};
        for_each_pair([&](const RowPairs &pairs) {
            for (std::size_t k = 0; k < pairs.count; ++k)
                pairs.weights[k] *= factors[pairs.first + k] * factors[pairs.other + k] *
                                    std::min(limits[pairs.first + k], limits[pairs.other + k]);
            add_gain(pairs, irradiance.x, pixels.divisor.x, result.x);
            add_gain(pairs, irradiance.y, pixels.divisor.y, result.y);
            add_gain(pairs, irradiance.z, pixels.divisor.z, result.z);
        });
        return result;
    }

  private:
    // Calls use(pairs) for the pairs of each pixel, in the order of the offsets; each pair from both sides.
    template <class Use> void for_each_pair(Use use) const {
        for_each_row(pixels.height, interrupt, [&](int y) {
            Plane weights(static_cast<std::size_t>(pixels.width));
            for (const Offset &offset : offsets()) {
                const int x0 = std::max(0, -offset.x);
                const int x1 = std::min(pixels.width, pixels.width - offset.x);
                if (y + offset.y < 0 || y + offset.y >= pixels.height || x0 >= x1)
                    continue;
                pair_weights(pixels, y, x0, x1, offset, weights.data());
                use(RowPairs{pixels.index(x0, y), pixels.index(x0 + offset.x, y + offset.y),
                             static_cast<std::size_t>(x1 - x0), weights.data()});
            }
        });
    }

    // Of each pixel, with itself, by the present factors.
    void add_weights(Plane &sums) const {
        for (std::size_t pixel = 0; pixel < sums.size(); ++pixel)
            sums[pixel] = factors[pixel] * factors[pixel];
        for_each_pair([&](const RowPairs &pairs) {
            const float *const mine = factors.data() + pairs.first;
            const float *const others = factors.data() + pairs.other;
            float *const into = sums.data() + pairs.first;
            for (std::size_t k = 0; k < pairs.count; ++k)
                into[k] += pairs.weights[k] * (mine[k] * others[k]);
        });
    }

    // In radiance, as much as either pixel takes of the other: by the smaller divisor.
    static void add_gain(const RowPairs &pairs, const Plane &irradiance, const Plane &divisor, Plane &gain) {
        const float *const value = irradiance.data() + pairs.first;
        const float *const other_value = irradiance.data() + pairs.other;
        const float *const albedo = divisor.data() + pairs.first;
        const float *const other_albedo = divisor.data() + pairs.other;
        float *const into = gain.data() + pairs.first;
        for (std::size_t k = 0; k < pairs.count; ++k)
            into[k] += pairs.weights[k] * std::min(albedo[k], other_albedo[k]) * (other_value[k] - value[k]);
    }

    const NoisyPixels &pixels;
    const Interrupt &interrupt;
    Plane factors; // A pair's weight is multiplied by those of both pixels,
    Plane limits;  // and by the smaller of these, so that no pixel takes more from others than it has.
};

// As that of the pixels, of surfaces alone.
Planes foreground_irradiance(const FrameBuffer &frame, const NoisyPixels &pixels, const SampleRange &samples) {
    Planes result = pixels.divisor;
    const std::vector<Color> &colors = frame.of(Aov::Foreground).pixels;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const auto count = static_cast<float>(frame.count_of(i, samples));
        const Color color = colors[i] + frame.guides[i].emission * (-1.0f / count);
        result.x[i] = color.r / pixels.divisor.x[i];
        result.y[i] = color.g / pixels.divisor.y[i];
        result.z[i] = color.b / pixels.divisor.z[i];
    }
    return result;
}

// Adds the gains to an AOV. If the picture is a part of a larger one's samples, the result gets sums, too: as if each
// sample had the denoised value, so that merged parts make their weighted mean.
void add(const Planes &gains, const FrameBuffer &noisy, Aov aov, FrameBuffer &result) {
    Picture &picture = result.of(aov);
    const PixelArea &area = picture.window;
    for (int y = area.y0; y < area.y1; ++y)
        for (int x = area.x0; x < area.x1; ++x) {
            const std::size_t i = noisy.index(x, y);
            picture.at(x, y) += Color{gains.x[i], gains.y[i], gains.z[i]};
        }
    if (const std::optional<PartSums> &part = noisy.of(aov).part; part && !part->samples.is_whole()) {
        picture.part = PartSums{part->samples, part->reduction, {}};
        picture.part->pixels.reserve(picture.pixels.size());
        for (const Color &value : picture.pixels)
            picture.part->pixels.push_back(SampleSums::of(value, part->samples.count()));
    }
}

} // namespace

bool can_be_denoised(const SampleRange &samples) {
    return samples.count() >= samples_per_group ||
           run_of(samples.first, samples.in_all) != run_of(samples.end - 1, samples.in_all);
}

PixelArea with_denoiser_margin(const PixelArea &window, int width, int height) {
    return {std::max(0, window.x0 - margin), std::max(0, window.y0 - margin), std::min(width, window.x1 + margin),
            std::min(height, window.y1 + margin)};
}

FrameBuffer denoised(const FrameBuffer &noisy, const SampleRange &samples, const PixelArea &window,
                     const Interrupt &interrupt) {
    const NoisyPixels pixels = noisy_pixels(noisy, samples, interrupt);
    const PairFilter filter(pixels, interrupt);
    FrameBuffer result = cropped(noisy, window);
    if (noisy.has(Aov::Color))
        add(filter.gains(pixels.irradiance), noisy, Aov::Color, result);
    if (noisy.has(Aov::Foreground))
        add(filter.gains(foreground_irradiance(noisy, pixels, samples)), noisy, Aov::Foreground, result);
    return result;
}

FrameBuffer cropped(const FrameBuffer &frame, const PixelArea &window) {
    FrameBuffer result(frame.width(), frame.height(), window);
    for (std::size_t i = 0; i < aov_count; ++i) {
        const auto aov = static_cast<Aov>(i);
        if (!frame.has(aov))
            continue;
        result.add(aov);
        result.of(aov).copy(frame.of(aov), window);
    }
    result.finished = result.pixels();
    return result;
}

} // namespace vantor
