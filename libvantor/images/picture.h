// Picture: pixels in memory.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/tiles.h"
#include "libvantor/images/sample_sums.h"

#include <vector>

namespace vantor {

/// The pixels of a window of a picture, linear, row after row from the top.
struct Picture {
    int full_width; ///< Of the whole picture that the window is cut from.
    int full_height;
    PixelArea window; ///< In pixels of the whole picture; not empty.
    std::vector<Color> pixels;
    std::optional<PartSums> part; ///< Where the pixels have some of a larger picture's samples.

    Picture(int width, int height, const PixelArea &area)
        : full_width(width), full_height(height), window(area),
          pixels(static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height())) {}

    /// x and y in pixels of the whole picture, inside the window.
    Color &at(int x, int y) { return pixels[index(x, y)]; }
    const Color &at(int x, int y) const { return pixels[index(x, y)]; }

    /// Takes an area's pixels from another picture, and what they are made of if both have that; it lies in the windows
    /// of both.
    void copy(const Picture &from, const PixelArea &area) {
        const bool has_sums = part && from.part;
        for (int y = area.y0; y < area.y1; ++y)
            for (int x = area.x0; x < area.x1; ++x) {
                at(x, y) = from.at(x, y);
                if (has_sums)
                    part->pixels[index(x, y)] = from.part->pixels[from.index(x, y)];
            }
    }

    /// Of x and y in the pixels, and in those of the part.
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - window.y0) * static_cast<std::size_t>(window.width()) +
               static_cast<std::size_t>(x - window.x0);
    }
};

} // namespace vantor
