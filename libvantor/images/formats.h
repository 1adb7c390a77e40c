// Formats: pixels as the bytes of a file, each format by its own library.
#pragma once

#include "libvantor/images/file_form.h"

#include <string>

namespace vantor {

/// Three integers a pixel, row after row from the top.
template <class Integer> struct IntegerPicture {
    int width;
    int height;
    std::vector<Integer> values;
    std::vector<Integer> alpha{}; ///< One for each pixel, or none at all; only PNG files keep it.
};
using BytePicture = IntegerPicture<std::uint8_t>;
using WordPicture = IntegerPicture<std::uint16_t>;

// The whole file, in memory: libraries write their last bytes when a file is closed, and not all of them tell whether
// that failed. The comment is ASCII. What goes wrong is thrown as a std::exception.

/// Deflated, with the comment as the text "Comment".
std::string png_file(const BytePicture &picture, const std::string &comment);
std::string png_file(const WordPicture &picture, const std::string &comment);

/// Quality 95, the colours in full resolution.
std::string jpeg_file(const BytePicture &picture, const std::string &comment);

/// Deflated, with the comment as the image's description.
std::string tiff_file(const BytePicture &picture, const std::string &comment);

/// Floats or halves in tiles of 64 x 64, deflated. The display window is the whole picture, the data window the
/// picture's window; the comment is the attribute "comments". The alpha, if there is one, is not multiplied by the
/// scale. Of a part, the sums are in further channels.
std::string exr_file(const Picture &picture, const FileForm &form);

/// The largest width and height that a JPEG file can have.
inline constexpr int largest_jpeg_side = 65500;

/// For the callbacks of C libraries, through which nothing may be thrown: false if there is no memory.
inline bool append(std::string &file, const void *bytes, std::size_t count) noexcept {
    try {
        file.append(static_cast<const char *>(bytes), count);
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

} // namespace vantor
