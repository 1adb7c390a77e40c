// Error estimate: how far a picture is likely to be from what it would be with any number of samples.
#include "libvantor/passes/error_estimate.h"

#include <cmath>

namespace vantor {

namespace {

struct BlockMeans {
    double luminance = 0;
    double variance = 0; // of a sample
    double pixels = 0;
    double samples = 0; // of each of them
};

BlockMeans means_of(const PixelArea &block, int width, const std::vector<HalfSums> &halves, int samples) {
    BlockMeans result{.pixels = static_cast<double>(block.width()) * block.height(),
                      .samples = static_cast<double>(samples)};
    for (int y = block.y0; y < block.y1; ++y)
        for (int x = block.x0; x < block.x1; ++x) {
            const HalfSums &sums =
                halves[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
            result.luminance += sums.mean(samples) / result.pixels;
            result.variance += sums.variance(samples) / result.pixels;
        }
    return result;
}

} // namespace

ErrorEstimate estimate_error(const BlockGrid &grid, const std::vector<HalfSums> &halves,
                             const std::function<int(const PixelArea &block)> &samples) {
    std::vector<BlockMeans> blocks(grid.count());
    double pixels = 0;
    double roots = 0;
    grid.for_each([&](std::size_t i, const PixelArea &block) {
        blocks[i] = means_of(block, grid.width, halves, samples(block));
        pixels += blocks[i].pixels;
        roots += blocks[i].pixels * std::sqrt(std::max(0.0, blocks[i].luminance));
    });
    const double brightness = (roots / pixels) * (roots / pixels);

    ErrorEstimate result;
    double squares = 0;
    for (const BlockMeans &block : blocks) {
        const double scale = std::max(block.luminance, brightness);
        const double variance = scale > 0 ? block.variance / (scale * scale) : 0;
        result.variances.push_back(variance);
        squares += block.pixels * variance / block.samples;
    }
    result.relative_error = std::sqrt(squares / pixels);
    return result;
}

} // namespace vantor
