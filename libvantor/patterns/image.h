// Image: a texture, laid over the texture coordinates.
#pragma once

#include "libvantor/patterns/source.h"
#include "libvantor/patterns/texture.h"

#include <memory>

namespace vantor {

/// The lower left corner of the picture lies at (0, 0), the upper right one at (1, 1).
struct Image {
    enum class Wrap { Repeat, Clamp, Mirror, Black }; ///< What lies beyond the picture.
    enum class Filter {
        Nearest,  ///< The pixel there.
        Bilinear, ///< Interpolated between the middles of pixels.
        Trilinear ///< Likewise, and between the two levels of which a pixel is as large as the footprint.
    };

    enum class Channel { Color, Red, Green, Blue, Alpha }; ///< What is shown; one channel as a grey.

    std::shared_ptr<const Texture> texture; ///< With smaller copies, if the filter is trilinear.
    Wrap wrap;
    Filter filter;
    Channel channel;
    Point2f scale;  ///< How many pictures lie on a length of 1.
    Point2f offset; ///< Added to the scaled coordinates.

    Color evaluate(const PatternPoint &at) const;
};

} // namespace vantor
