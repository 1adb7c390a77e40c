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
    const float *weights;
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

    // The result is another plane.
    void apply(const Picture &picture, Picture &result) const {
        Planes from = divided(picture);
        result.pixels = picture.pixels;
        for_each_pair([&](const RowPairs &pairs) {
            for (std::size_t k = 0; k < pairs.count; ++k) {
                const std::size_t i = pairs.first + k;
                const std::size_t j = pairs.other + k;
                const float weight = pairs.weights[k] * (factors[i] * factors[j]) * std::min(limits[i], limits[j]);
                // In radiance, as much as either pixel takes of the other: by the smaller divisor.
                result.pixels[i] +=
                    Color{weight * std::min(pixels.divisor.x[i], pixels.divisor.x[j]) * (from.x[j] - from.x[i]),
                          weight * std::min(pixels.divisor.y[i], pixels.divisor.y[j]) * (from.y[j] - from.y[i]),
                          weight * std::min(pixels.divisor.z[i], pixels.divisor.z[j]) * (from.z[j] - from.z[i])};
            }
        });
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

    Planes divided(const Picture &picture) const {
        Planes result = pixels.divisor;
        for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
            result.x[i] = picture.pixels[i].r / pixels.divisor.x[i];
            result.y[i] = picture.pixels[i].g / pixels.divisor.y[i];
            result.z[i] = picture.pixels[i].b / pixels.divisor.z[i];
        }
        return result;
    }

    const NoisyPixels &pixels;
    const Interrupt &interrupt;
    Plane factors; // A pair's weight is multiplied by those of both pixels,
    Plane limits;  // and by the smaller of these, so that no pixel takes more from others than it has.
};

} // namespace

PixelArea with_denoiser_margin(const PixelArea &window, int width, int height) {
    return {std::max(0, window.x0 - margin), std::max(0, window.y0 - margin), std::min(width, window.x1 + margin),
            std::min(height, window.y1 + margin)};
}

FrameBuffer denoised(const FrameBuffer &noisy, const SampleRange &samples, const PixelArea &window,
                     const Interrupt &interrupt) {
    const NoisyPixels pixels = noisy_pixels(noisy, samples, interrupt);
    const PairFilter filter(pixels, interrupt);
    FrameBuffer result = cropped(noisy, window);
    for (const Aov aov : {Aov::Color, Aov::Foreground}) {
        if (!noisy.has(aov))
            continue;
        Picture picture(noisy.width(), noisy.height(), noisy.window());
        filter.apply(noisy.of(aov), picture);
        result.of(aov).copy(picture, window);
    }
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
