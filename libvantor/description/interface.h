// Interface: how light scatters at a surface, as the script described it.
#pragma once

#include "libvantor/parameters/reader.h"
#include "libvantor/scattering/bsdf.h"

namespace vantor {

/// Of the type that the script named, an interface, or a material that is one at the same time.
Bsdf make_bsdf(const Type &type, const Parameters &parameters, const CallReport &report);

} // namespace vantor
