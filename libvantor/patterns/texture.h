// Texture: a picture, and ever smaller copies of it.
#pragma once

#include "libvantor/images/raster.h"

namespace vantor {

/// Level 0 is the picture, as its file holds it; each next level has half its width and height, rounded down, to the
/// last of one pixel (Williams, "Pyramidal Parametrics", 1983). A pixel of a smaller level is the mean of those that it
/// covers, so that all levels have the mean of the picture. Means are floats, whatever the file has: rounded to its 8
/// bits, dark values would change by half of themselves.
struct Texture {
    std::vector<Raster> levels;

    /// Of a picture with at least one pixel, and usable values. Without smaller copies, only what shows the picture
    /// itself may use it.
    explicit Texture(Raster picture);

    /// Makes the smaller copies. Throws Interrupted.
    void add_smaller_copies(const Interrupt &interrupt);
};

} // namespace vantor
