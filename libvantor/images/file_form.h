// File form: how pixels go into a file.
#pragma once

#include "libvantor/images/display.h"
#include "libvantor/images/picture.h"

#include <string>
#include <vector>

namespace vantor {

/// A picture beside another one in the same OpenEXR file, whose channels are called "name.R" and so on.
struct FileLayer {
    std::string name;
    const Picture *picture; ///< Of the same window.
};

struct FileForm {
    float scale = 1;                 ///< Every value is multiplied by it, but for those of layers.
    Display display = Display::Srgb; ///< Where the file has integers; one of floats is always linear.
    std::string comment{};           ///< Goes along with the picture; ASCII.
    const Picture *alpha = nullptr;  ///< What is covered, in all components, of the same window; null for all of it.
                                     ///< The colours are those of the covered part. JPEG and TIFF files do not keep it.
    int bits = 0;                    ///< Of a channel, one of bits_of_format(); 0 for the first of them.
    std::vector<FileLayer> layers{}; ///< Of an OpenEXR file.
};

} // namespace vantor
