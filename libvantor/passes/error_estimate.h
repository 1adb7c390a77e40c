// Error estimate: how far a picture is likely to be from what it would be with any number of samples.
#pragma once

#include "libvantor/film/frame_buffer.h"
#include "libvantor/passes/blocks.h"

#include <vector>

namespace vantor {

/// Of fewer samples no error can be estimated.
inline constexpr int least_estimated_samples = 2 * samples_per_half;

/// Errors of luminance. Those of a block's pixels are relative to the block's own mean; where that is darker than the
/// picture is on the whole, to the picture's: the square of the mean of its pixels' square roots, so that few very
/// bright ones, those of a lamp or of the sun, do not count for all others.
struct ErrorEstimate {
    std::vector<double> variances; ///< Of a sample of a pixel, for each block.
    double relative_error = 0;     ///< The root of the mean over all pixels of their squared errors.
};

/// Of a whole picture, from its pixels' halves; samples(block) is how many each pixel of a block has.
ErrorEstimate estimate_error(const BlockGrid &grid, const std::vector<HalfSums> &halves,
                             const std::function<int(const PixelArea &block)> &samples);

} // namespace vantor
