// Imagers: their types and parameters.
#include "libvantor/words/ranges.h"
#include "libvantor/words/tables.h"

namespace vantor {

using namespace words;

namespace {

constexpr Parameter file_parameters[] = {
    {"name", ValueKind::Text, any, Presence::Required, none, "", "the picture's path; it ends in .png or .exr"},
    {"exposure", ValueKind::Number, stops, Presence::Default, {0}, "stops", "the picture is multiplied by 2^exposure"},
};
constexpr Type imagers_table[] = {
    {"file", "Writes the picture to a file: .png 8 bits a channel, sRGB; .exr floats, linear.", file_parameters},
};

} // namespace

std::span<const Type> words::imager_types() { return imagers_table; }

} // namespace vantor
