// Tile loop: the pixels of a frame, on all cores.
#pragma once

#include "libvantor/base/progress.h"
#include "libvantor/film/frame_buffer.h"
#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/passes/blocks.h"
#include "libvantor/world/world.h"

namespace vantor {

/// Gives the pixels of the frame's window the samples of their blocks; to the progress, a step for each sample of a
/// pixel. Once an interrupt is requested no further block is begun, and those that are not finished stay as they were.
void render_tiles(const World &world, const View &view, const IrradianceLookup &indirect, const Filter &filter,
                  const SamplesOfBlock &samples, const Interrupt &interrupt, Progress &progress, FrameBuffer &frame);

} // namespace vantor
