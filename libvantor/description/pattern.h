// Pattern: what varies over surfaces, as the script described it.
#pragma once

#include "libvantor/description/texture.h"
#include "libvantor/parameters/type_maker.h"
#include "libvantor/patterns/pattern.h"

#include <functional>
#include <optional>

namespace vantor {

/// The pattern whose id the parameter of that name is; null, after a diagnostic, if it is none.
using PatternFinder = std::function<const Pattern *(std::string_view parameter)>;

/// The texture file whose id the parameter of that name is; null, after a diagnostic, if it is none.
using TextureFinder = std::function<TextureFile *(std::string_view parameter)>;

/// What a pattern may refer to.
struct PatternFinders {
    PatternFinder pattern;
    TextureFinder texture;
};

/// A parameter that is given as a pattern, or null.
const Pattern *pattern_in(const Parameters &parameters, std::string_view name, const PatternFinder &find);

ColorOrPattern color_or_pattern(const Parameters &parameters, std::string_view name, const PatternFinder &find);
NumberOrPattern number_or_pattern(const Parameters &parameters, std::string_view name, const PatternFinder &find);

using PatternMaker = TypeMaker<std::optional<Pattern>(const Parameters &, const PatternFinders &, const CallReport &)>;

/// One for each type of pattern.
std::span<const PatternMaker> pattern_makers();

/// Nothing, after a diagnostic, if it cannot be evaluated.
std::optional<Pattern> make_pattern(const Type &type, const Parameters &parameters, const PatternFinders &find,
                                    const CallReport &report);

} // namespace vantor
