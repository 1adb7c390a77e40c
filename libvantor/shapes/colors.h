// Colors: those that a script gives to the primitives of a shape, or to instances.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/parameters/reader.h"

namespace vantor {

/// Checks that an array has one element for each of `of`, which there are so many of; reports if not.
bool check_one_for_each(std::size_t count, std::string_view of, std::string_view name, VtLong elements,
                        const Parameters &parameters, const CallReport &report);

/// The parameter "colors", which the material's colour is multiplied with: one for each of `of`; nothing, after a
/// diagnostic, if it cannot be used. All its elements have storage.
std::vector<Color> read_colors(std::size_t count, std::string_view of, const Parameters &parameters,
                               const CallReport &report);

} // namespace vantor
