// Raster: a whole picture in memory, as a light or a texture reads it.
#pragma once

#include "libvantor/base/color.h"

#include <vector>

namespace vantor {

struct Raster {
    int width = 0;
    int height = 0;
    std::vector<Color> pixels; ///< Linear, row after row from the top.
    std::vector<float> alpha;  ///< One for each pixel, 0 to 1 in good files; empty where everything is covered.
    bool is_from_srgb = false; ///< Whether they stand in the file in sRGB, and have been decoded.

    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
    const Color &at(int x, int y) const { return pixels[index(x, y)]; }
};

} // namespace vantor
