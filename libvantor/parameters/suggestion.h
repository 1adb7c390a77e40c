// Suggestions: which known word is meant by an unknown one.
#pragma once

#include "libvantor/parameters/vocabulary.h"

#include <string>
#include <vector>

namespace vantor {

using Words = std::vector<std::string_view>;

/// The known word that is near, or is this renderer's for one of another program; empty if there is none.
std::string_view word_meant(std::string_view wrong, const Words &known);

/// " (did you mean "fov"?)" where a known word is meant, else " (known: "fov", "up")".
std::string suggestion(std::string_view wrong, const Words &known);

/// Likewise, of the types of a kind.
std::string type_suggestion(EntityKind kind, std::string_view wrong);

/// Of types, or of parameters.
template <class Named> Words names_in(std::span<const Named> entries) {
    Words names;
    for (const Named &entry : entries)
        names.push_back(entry.name);
    return names;
}

} // namespace vantor
