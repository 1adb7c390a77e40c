// Interface: how light scatters at a surface, as the script described it.
#pragma once

#include "libvantor/parameters/type_maker.h"
#include "libvantor/scattering/bsdf.h"

namespace vantor {

using InterfaceMaker = TypeMaker<BsdfDescription(const Parameters &, const CallReport &)>;

/// One for each type of interface.
std::span<const InterfaceMaker> interface_makers();

BsdfDescription make_bsdf(const Type &type, const Parameters &parameters, const CallReport &report);

/// The interface of a "diffuse" material, whose parameters are those of the "diffuse" interface.
BsdfDescription make_diffuse(const Parameters &parameters, const CallReport &report);

} // namespace vantor
