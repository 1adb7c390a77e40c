// Picture files: PNG, JPEG, TIFF and OpenEXR. The only room with the image libraries.
#pragma once

#include "libvantor/images/display.h"
#include "libvantor/images/picture.h"

#include <functional>
#include <string>

namespace vantor {

/// How pixels go into a file.
struct FileForm {
    float scale = 1;                 ///< Every value is multiplied by it.
    Display display = Display::Srgb; ///< Where the file has 8 bits; one of floats is always linear.
    std::string comment;             ///< Goes along with the picture; ASCII.
    const Picture *alpha = nullptr;  ///< What is covered, in all components, of the same window; null for all of it.
                                     ///< The colours are those of the covered part. JPEG and TIFF files do not keep it.
};

/// The endings of the known formats, as a message lists them.
inline constexpr std::string_view known_endings = ".png, .jpg, .jpeg, .tif, .tiff and .exr";

/// Whether the path ends in one of them, in any case.
bool has_known_format(const std::string &path);

/// Whether that format holds floats; otherwise 8 bits.
bool holds_floats(const std::string &path);

/// Why no file of a picture of that size can be written at the path; empty if one can. Tries it out in the file's
/// folder and leaves no trace.
std::string why_unwritable(const std::string &path, int width, int height);

/// Who is offered every picture that goes into a file of floats unscaled. If it returns true, no file is written. An
/// empty one ends that. Not during a pass.
using PictureHandler = std::function<bool(const Picture &picture, const std::string &path)>;
void set_picture_handler(PictureHandler handler);

/// Who sees such pictures grow: is called with each finished part of one, from any thread. An empty one ends that. Not
/// during a pass.
using TileHandler = std::function<void(const Picture &picture, const PixelArea &tile, const std::string &path)>;
void set_tile_handler(TileHandler handler);
const TileHandler &tile_handler();

/// Writes the picture: whole, or not at all. An existing file is replaced at the end, in one step. A file of 8 bits
/// holds the window alone. An EXR file knows the whole picture: its display window is the picture, its data window the
/// window. Returns what went wrong; empty if nothing did.
std::string write_picture(const Picture &picture, const FileForm &form, const std::string &path);

} // namespace vantor
