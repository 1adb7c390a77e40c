// Reading pictures: PNG, JPEG, OpenEXR and Radiance files, recognised by their first bytes.
#pragma once

#include "libvantor/images/picture.h"
#include "libvantor/images/raster.h"

#include <optional>
#include <string>
#include <vector>

namespace vantor {

struct ReadPicture {
    std::optional<Raster> raster;
    std::string why_not;          ///< In one line, where there is no raster.
    bool was_interrupted = false; ///< By Ctrl-C: the next time the file may well be read.
};

/// PNG: 8 or 16 bits, grey, palette or colours; JPEG: grey or colours; the values of both are taken as sRGB. OpenEXR:
/// the channels R, G and B, or Y, of the display window, halves if all of them are; values as they stand in the file,
/// be they negative or not finite. Of a layer of
/// that name likewise, or X, Y and Z, or the one channel that it has. Radiance (.hdr): RGBE, as it stands in the file,
/// in floats. Colours of OpenEXR files are multiplied by their alpha, those of PNG files are not,
/// as these formats have it. A picture has up to 2^28 pixels. What it will take is found out before it is decoded: more
/// than VANTOR_PICTURE_MEMORY says, in MiB, is refused. Ctrl-C is heard between two rows. Nothing is thrown, whatever
/// is in the file.
ReadPicture read_picture(const std::string &path, const std::string &layer = {});

/// The layers of an OpenEXR file that can be read; of any other file none.
std::vector<std::string> layer_names(const std::string &path);

struct ReadPart {
    std::optional<Picture> picture; ///< With its sums.
    std::string why_not;            ///< In one line, where there is no picture.
};

/// The OpenEXR file of a pass that has made a part of a larger picture's samples; without the exposure of its colours.
/// Nothing is thrown, whatever is in the file.
ReadPart read_part(const std::string &path);

} // namespace vantor
