// Denoiser: a picture with less noise, of the same samples.
#include "libvantor/denoising/denoiser.h"

#include "libvantor/denoising/pair_filter.h"

namespace vantor {

namespace {

constexpr int margin = gain_radius + variance_radius;

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
    FrameBuffer result = cropped(noisy, window);
    const Planes of_foreground = noisy.has(Aov::Foreground) ? foreground_irradiance(noisy, pixels, samples) : Planes{};
    std::vector<Aov> aovs;
    std::vector<const Planes *> irradiances;
    for (const auto &[aov, irradiance] : {std::pair{Aov::Color, &pixels.irradiance}, {Aov::Foreground, &of_foreground}})
        if (noisy.has(aov)) {
            aovs.push_back(aov);
            irradiances.push_back(irradiance);
        }
    const std::vector<Planes> gains = pair_gains(pixels, irradiances, rows_at_once(pixels.width), interrupt);
    for (std::size_t i = 0; i < aovs.size(); ++i)
        add(gains[i], noisy, aovs[i], result);
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
