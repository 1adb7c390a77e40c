// Interface: how light scatters at a surface, as the script described it.
#pragma once

#include "libvantor/scattering/scattering.h"
#include "libvantor/words/reader.h"

namespace vantor {

/// Of the type that the script named, an interface, or a material that is one at the same time.
Scattering make_scattering(const Type &type, const Parameters &parameters, const CallReport &report);

} // namespace vantor
