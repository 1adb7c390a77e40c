// Picture files: PNG, JPEG, TIFF and OpenEXR. The only room with the image libraries.
#pragma once

#include "libvantor/images/file_form.h"

#include <functional>
#include <span>
#include <string>

namespace vantor {

/// The endings of the known formats, as a message lists them.
inline constexpr std::string_view known_endings = ".png, .jpg, .jpeg, .tif, .tiff and .exr";

/// Whether the path ends in one of them, in any case.
bool has_known_format(const std::string &path);

/// Whether that format holds floats; otherwise integers.
bool holds_floats(const std::string &path);

/// How many bits a channel may have in that format, what is usual first. 16 are integers in a PNG file, halves in an
/// OpenEXR file, where values beyond their range are the nearest that they have.
std::span<const int> bits_of_format(const std::string &path);

/// Why no file of a picture of that size can be written at the path; empty if one can. Tries it out in the file's
/// folder and leaves no trace.
std::string why_unwritable(const std::string &path, int width, int height);

/// Who is offered every picture that goes into a file of floats unscaled and without layers. If it returns true, no
/// file is written. An empty one ends that. Not during a pass.
using PictureHandler = std::function<bool(const Picture &picture, const std::string &path)>;
void set_picture_handler(PictureHandler handler);

/// Who sees such pictures grow: is called with each finished part of one, from any thread. An empty one ends that. Not
/// during a pass.
using TileHandler = std::function<void(const Picture &picture, const PixelArea &tile, const std::string &path)>;
void set_tile_handler(TileHandler handler);
const TileHandler &tile_handler();

/// Writes the picture: whole, or not at all. An existing file is replaced at the end, in one step. A file of integers
/// holds the window alone. An EXR file knows the whole picture: its display window is the picture, its data window the
/// window. Returns what went wrong; empty if nothing did.
std::string write_picture(const Picture &picture, const FileForm &form, const std::string &path);

} // namespace vantor
