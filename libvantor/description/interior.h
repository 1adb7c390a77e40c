// Interior: what fills the bodies of an interior block.
#pragma once

#include "libvantor/parameters/type_maker.h"
#include "libvantor/scattering/medium.h"

namespace vantor {

/// How many interiors a scene may have.
inline constexpr std::size_t most_interiors = 32767;

using InteriorMaker = TypeMaker<Medium(const Parameters &, const CallReport &)>;

/// One for each type of interior.
std::span<const InteriorMaker> interior_makers();

Medium make_medium(const Type &type, const Parameters &parameters, const CallReport &report);

} // namespace vantor
