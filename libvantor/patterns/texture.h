// Texture: a picture, and ever smaller copies of it.
#pragma once

#include "libvantor/images/raster.h"

namespace vantor {

/// Level 0 is the picture; each next level has half its width and height, rounded down, to the last of one pixel
/// (Williams, "Pyramidal Parametrics", 1983). A pixel is the mean of those that it covers, so that all levels have the
/// mean of the picture. Pixels are three floats, and one more where there is alpha.
struct Texture {
    std::vector<Raster> levels;

    /// Of a picture with at least one pixel. What is not finite or negative becomes 0.
    explicit Texture(Raster picture);
};

/// The picture with its values taken as the script says, not as the file says: one that was decoded from sRGB as it
/// stands in the file, or any other as if it stood there in sRGB.
Raster with_other_coding(const Raster &picture);

} // namespace vantor
