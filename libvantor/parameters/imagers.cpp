// Imagers: their types and parameters.
#include "libvantor/base/aov.h"
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr std::string_view displays[] = {"srgb", "linear", "filmic"};
constexpr std::string_view filters[] = {"tent", "box", "gaussian", "blackman_harris"};

constexpr Range seeds{.low = 0.0, .high = 2147483647.0, .text = "0 to 2147483647"};
constexpr Range bounces{.low = 1.0, .high = 1000.0, .text = "1 to 1000"};
constexpr Range sample_counts{.low = 0.0, .high = 16777216.0, .text = "0 to 16777216"};
constexpr Range bit_counts{.low = 8.0, .high = 32.0, .text = "8, 16 or 32"};
constexpr Range filter_widths{.low = 0.01, .high = 64.0, .text = "0.01 to 64"};

constexpr Parameter file_parameters[] = {
    {"name", ValueKind::Text, any, Presence::Required, none, "",
     "the picture's path; it ends in .png, .jpg, .jpeg, .tif, .tiff or .exr"},
    {"what", ValueKind::Choice, any, Presence::Default, none, "", "what the picture shows of each pixel", aov_names},
    {"exposure", ValueKind::Number, stops, Presence::Default, value(0), "stops",
     "the colour is multiplied by 2^exposure"},
    {"display", ValueKind::Choice, any, Presence::Default, none, "",
     "how 8 bits are made of light: by the sRGB curve, as it is, or with its highlights compressed first as film does",
     displays},
    {"background", ValueKind::Switch, off_or_on, Presence::Default, value(1, 1, 1), "",
     "0: where a path meets no surface the colour is black, and .png and .exr files have an alpha, which is 0 there"},
    {"denoise", ValueKind::Switch, off_or_on, Presence::Default, value(0), "",
     "1: pixels that cannot be told apart from each other are averaged, and the noise is less"},
    {"bits", ValueKind::Integer, bit_counts, Presence::Optional, none, "bits",
     "of a channel: 8 or 16 in a .png file, 16 (half floats) or 32 in an .exr file; left out, 8 and 32"},
    {"layers", ValueKind::Text, any, Presence::Optional, none, "",
     "what an .exr file shows besides, each in a layer of its name: words that \"what\" takes, with spaces between"},
    {"filter", ValueKind::Choice, any, Presence::Default, none, "", "how samples are spread around a pixel's middle",
     filters},
    {"filter_width", ValueKind::Number, filter_widths, Presence::Optional, none, "pixels",
     "the filter from edge to edge; left out, tent 2, box 1, gaussian 3, blackman_harris 4"},
};
constexpr Parameter settings_parameters[] = {
    {"seed", ValueKind::Integer, seeds, Presence::Default, value(0, 0, 0), "",
     "another seed gives the same picture with other noise"},
    {"max_depth", ValueKind::Integer, bounces, Presence::Default, value(1000, 1000, 1000), "",
     "how often light is scattered at most on its way to the camera; 1 is direct, 1000 no limit"},
    {"clamp", ValueKind::Number, not_negative, Presence::Default, value(0), "radiance",
     "the most that one sample of indirect light counts; 0 is no limit"},
    {"final_gather", ValueKind::Switch, off_or_on, Presence::Default, value(0), "",
     "after radiosity(): the first diffuse surface gathers its light with rays, and only those rays use the result"},
    {"first_sample", ValueKind::Integer, sample_counts, Presence::Default, value(0, 0, 0), "",
     "the pass makes a range of a larger picture's samples, from this one on"},
    {"samples_in_all", ValueKind::Integer, sample_counts, Presence::Default, value(0, 0, 0), "",
     "how many samples a pixel of that picture has; 0 is as many as there are with this pass"},
    {"time_limit", ValueKind::Number, not_negative, Presence::Default, value(0), "s",
     "the pass begins no further samples that are likely to end later; 0 is no limit"},
    {"noise", ValueKind::Number, not_negative, Presence::Default, value(0), "",
     "the pass ends when the picture's relative error is below it, as estimated; 0 is never"},
    {"adaptive", ValueKind::Switch, off_or_on, Presence::Default, value(0), "",
     "1: after 16 samples a pixel, further ones go where the noise is; their number is that of the mean"},
};
constexpr Type imagers_table[] = {
    {"file",
     "Writes the picture to a file: .exr floats, linear; all others integers, 8 bits a channel unless said otherwise.",
     file_parameters},
    {"settings", "Writes nothing; says how pictures are made while its block is open.", settings_parameters},
};

} // namespace

std::span<const Type> tables::imager_types() { return imagers_table; }

} // namespace vantor
