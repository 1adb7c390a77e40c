// Imagers: their types and parameters.
#include "libvantor/words/ranges.h"
#include "libvantor/words/tables.h"

namespace vantor {

using namespace words;

namespace {

constexpr std::string_view displays[] = {"srgb", "linear", "filmic"};

constexpr Parameter file_parameters[] = {
    {"name", ValueKind::Text, any, Presence::Required, none, "",
     "the picture's path; it ends in .png, .jpg, .jpeg, .tif, .tiff or .exr"},
    {"exposure", ValueKind::Number, stops, Presence::Default, {0}, "stops", "the picture is multiplied by 2^exposure"},
    {"display", ValueKind::Choice, any, Presence::Default, none, "",
     "how 8 bits are made of light: by the sRGB curve, as it is, or with its highlights compressed first as film does",
     displays},
};
constexpr Type imagers_table[] = {
    {"file", "Writes the picture to a file: .exr floats, linear; all others 8 bits a channel.", file_parameters},
};

} // namespace

std::span<const Type> words::imager_types() { return imagers_table; }

} // namespace vantor
