// Tile loop: the pixels of a frame, on all cores.
#pragma once

#include "libvantor/film/frame_buffer.h"
#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/world/world.h"

namespace vantor {

/// Gives each pixel of the frame's window these samples, a subtree of all. Once an interrupt is requested no further
/// pixel is begun, and those that are not finished stay black.
void render_tiles(const World &world, const View &view, const IrradianceLookup &indirect, const Filter &filter,
                  const SampleRange &samples, const Interrupt &interrupt, FrameBuffer &frame);

} // namespace vantor
