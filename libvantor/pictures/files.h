// Picture files: PNG and OpenEXR. The only room with the image libraries.
#pragma once

#include "libvantor/pictures/picture.h"

#include <string>

namespace vantor {

/// Whether the path ends in .png or .exr, in any case.
bool has_known_format(const std::string &path);

/// Why no file can be written at the path; empty if one can. Tries it out in the file's folder and leaves no trace.
std::string why_unwritable(const std::string &path);

/// Writes the picture, every value multiplied by the scale: whole, or not at all. An existing file is replaced at the
/// end, in one step. A PNG file holds the window alone. An EXR file knows the whole picture: its display window is
/// the picture, its data window the window. Returns what went wrong; empty if nothing did.
std::string write_picture(const Picture &picture, float scale, const std::string &path);

} // namespace vantor
