// Readers: each format's part of reading pictures. They throw what is wrong with a file, and Interrupted.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/images/picture.h"
#include "libvantor/images/raster.h"

#include <string>
#include <vector>

namespace vantor {

/// Throws unless it is a size that a picture may have.
void check_size(long width, long height);

/// Throws if the picture would take more memory than it may: its pixels, what a light or a texture makes of them, and
/// so many bytes more while it is decoded.
void check_memory(long width, long height, PixelFormat format, double decoding_bytes);

/// For files whose picture takes more than they can hold, however well it is compressed.
[[noreturn]] void refuse_as_too_short();

/// Without a layer's name, the file's own picture.
Raster read_exr(const std::string &path, const std::string &layer, long file_size, const Interrupt &interrupt);

/// Of those that are pictures, in alphabetical order.
std::vector<std::string> exr_layer_names(const std::string &path);

/// A part of a larger picture, as exr_file() writes it, without what its colours were multiplied by.
Picture read_exr_part(const std::string &path, long file_size);

Raster read_hdr(const std::string &path, long file_size, const Interrupt &interrupt);
Raster read_jpeg(const std::string &path, long file_size, const Interrupt &interrupt);
Raster read_png(const std::string &path, long file_size, const Interrupt &interrupt);

} // namespace vantor
