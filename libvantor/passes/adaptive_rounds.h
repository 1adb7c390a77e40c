// Adaptive rounds: a pass whose further samples go where the noise is.
#pragma once

#include "libvantor/passes/blocks.h"
#include "libvantor/passes/error_estimate.h"
#include "libvantor/passes/rounds.h"

namespace vantor {

/// As many samples every pixel gets at first.
inline constexpr int first_adaptive_samples = samples_per_group;

/// Gives the pixels of a frame the samples of their blocks.
using RenderBlocks = std::function<void(const SamplesOfBlock &samples, FrameBuffer &frame)>;

/// Renders a whole picture in rounds, each of which brings the mean number of samples to up to four times what it was.
/// Where they go, shared_out() decides by the error that the round before has left. The frame then has counts.
///
/// All is decided for the whole picture, so that any window has the same pixels; in the last round, where it is known
/// to be the last, only blocks that touch the needed area are rendered.
///
/// The samples of the result are the mean over the picture. They are more than first_adaptive_samples at the end.
SamplesMade render_adaptively(const RoundLimits &limits, int samples, const PixelArea &needed,
                              const Interrupt &interrupt, const RenderBlocks &render, FrameBuffer &frame);

} // namespace vantor
