// The vocabulary as text.
#pragma once

#include "libvantor/parameters/vocabulary.h"

#include <string>

namespace vantor {

/// "1", "(0, 1, 0)", "\"vertical\"", "none" or "required".
std::string default_of(const Parameter &parameter);

/// Every type and parameter, a line for each, as renderer/vt_vocabulary.h says.
const std::string &vocabulary_text();

} // namespace vantor
