// Denoiser: a picture with less noise, of the same samples.
#pragma once

#include "libvantor/denoising/noisy_pixels.h"

namespace vantor {

/// Whether the noise can be estimated: that takes samples of at least two runs (guides.h).
bool can_be_denoised(const SampleRange &samples);

/// What has to be rendered so that the pixels of a window can be denoised as those of the whole picture are.
PixelArea with_denoiser_margin(const PixelArea &window, int width, int height);

/// What the imagers of a window are shown: the pictures of the noisy frame, whose colour and foreground are denoised.
/// The noisy frame has guides, is whole, and has the window's margin. A part of a picture's samples stays one: merged
/// with others, it makes their mean, weighted by samples. Throws Interrupted.
///
/// Pixels that cannot be told apart share what they have, in pairs (pair_filter.h). So no light gets lost where rare
/// bright samples stand out, and the picture's mean is what it was.
FrameBuffer denoised(const FrameBuffer &noisy, const SampleRange &samples, const PixelArea &window,
                     const Interrupt &interrupt);

/// A part of the frame's pictures: the window, which lies in its.
FrameBuffer cropped(const FrameBuffer &frame, const PixelArea &window);

} // namespace vantor
