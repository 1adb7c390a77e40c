// AOV output: from what a pass has made to the files of its imagers.
#pragma once

#include "libvantor/description/imager.h"
#include "libvantor/images/picture.h"

namespace vantor {

/// Writes a picture of what the imager shows; in 8 bits so that it can be looked at. Returns what went wrong; empty if
/// nothing did.
std::string write_file(const FileImager &imager, const Picture &picture, const std::string &comment);

} // namespace vantor
