// Interior: what fills the bodies of an interior block.
#pragma once

#include "libvantor/parameters/reader.h"
#include "libvantor/scattering/medium.h"

namespace vantor {

/// How many interiors a scene may have.
inline constexpr std::size_t most_interiors = 32767;

Medium make_medium(const Parameters &parameters, const CallReport &report);

} // namespace vantor
