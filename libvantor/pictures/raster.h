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

    const Color &at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

} // namespace vantor
