// Tables: the types of each kind of entity, each kind in a file of its own.
#pragma once

#include "libvantor/parameters/vocabulary.h"

namespace vantor::tables {

std::span<const Type> camera_types();
std::span<const Type> imager_types();
std::span<const Type> interface_types();
std::span<const Type> interior_types();
std::span<const Type> light_types();
std::span<const Type> material_types();
std::span<const Type> object_types();
std::span<const Type> pattern_types();
std::span<const Type> trimmer_types();

/// Of the diffuse interface, and of the material that is one.
std::span<const Parameter> diffuse_words();

} // namespace vantor::tables
