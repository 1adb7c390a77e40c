// Imager: where a picture goes.
#pragma once

#include "libvantor/words/reader.h"

#include <optional>
#include <string>

namespace vantor {

struct Imager {
    std::string path; ///< Ends in .png or .exr.
    float scale;      ///< What the picture is multiplied by.
};

/// Nothing, after a diagnostic, if the path names no format.
std::optional<Imager> make_imager(const Parameters &parameters, const CallReport &report);

} // namespace vantor
