// AOV output: from a frame to the files of its imagers.
#pragma once

#include "libvantor/description/imager.h"
#include "libvantor/film/frame_buffer.h"

namespace vantor {

/// Writes what the imager shows of the frame, which has to hold that; in 8 bits so that it can be looked at. Returns
/// what went wrong; empty if nothing did.
std::string write_file(const FileImager &imager, const FrameBuffer &frame, const std::string &comment);

/// Shows whoever wants to see pictures grow (set_tile_handler) a part of the frame that is finished.
void show_tile(const std::vector<FileImager> &imagers, const FrameBuffer &frame, const PixelArea &tile);

} // namespace vantor
