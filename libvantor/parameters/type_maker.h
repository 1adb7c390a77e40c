// Type maker: what makes the entities of a type.
#pragma once

#include "libvantor/parameters/reader.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <string_view>

namespace vantor {

/// A row of a dispatch table: a type of the vocabulary, and the function that makes its entities.
template <class Function> struct TypeMaker {
    std::string_view type;
    Function *make;
};

/// The table's row for a type. Every type has one, which a test holds: a missing one is a mistake in this program.
template <class Function>
const TypeMaker<Function> &maker_of(std::span<const TypeMaker<Function>> makers, const Type &type) {
    const auto found = std::ranges::find(makers, type.name, &TypeMaker<Function>::type);
    if (found == makers.end())
        throw std::logic_error(joined({"nothing makes the type \"", type.name, "\""}));
    return *found;
}

} // namespace vantor
