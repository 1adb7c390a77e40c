// Picture: pixels in memory.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/tiles.h"

#include <vector>

namespace vantor {

/// The pixels of a window of a picture, linear, row after row from the top.
struct Picture {
    int full_width; ///< Of the whole picture that the window is cut from.
    int full_height;
    PixelArea window; ///< In pixels of the whole picture; not empty.
    std::vector<Color> pixels;

    Picture(int width, int height, const PixelArea &part)
        : full_width(width), full_height(height), window(part),
          pixels(static_cast<std::size_t>(part.width()) * static_cast<std::size_t>(part.height())) {}

    /// x and y in pixels of the whole picture, inside the window.
    Color &at(int x, int y) { return pixels[index(x, y)]; }
    const Color &at(int x, int y) const { return pixels[index(x, y)]; }

  private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - window.y0) * static_cast<std::size_t>(window.width()) +
               static_cast<std::size_t>(x - window.x0);
    }
};

} // namespace vantor
