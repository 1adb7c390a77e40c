// Reading TIFF files.
#pragma once

#include "libvantor/images/raster.h"

#include <string>

/// A TIFF file of any kind that libtiff shows in 8 bits, taken as sRGB. Throws what is wrong with it.
vantor::Raster read_tiff(const std::string &path);

/// Whether the file begins as TIFF files do.
bool is_tiff(const std::string &path);
