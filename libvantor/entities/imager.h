// Imager: where a picture goes.
#pragma once

#include "libvantor/pictures/display.h"
#include "libvantor/words/reader.h"

#include <optional>
#include <string>

namespace vantor {

struct Imager {
    std::string path; ///< Its ending is that of a known format.
    float scale;      ///< What the picture is multiplied by.
    Display display;  ///< How 8 bits are made of it.
};

/// Nothing, after a diagnostic, if the path names no format.
std::optional<Imager> make_imager(const Parameters &parameters, const CallReport &report);

} // namespace vantor
