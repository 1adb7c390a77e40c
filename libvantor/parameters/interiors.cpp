// Interiors: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

// At the ends all light goes straight on or back, which no direction can be sampled for.
constexpr Range mean_cosine{.low = -0.99, .high = 0.99, .text = "-0.99 to 0.99"};

constexpr Parameter homogeneous_parameters[] = {
    {"sigma_a", ValueKind::Color, not_negative, Presence::Default, value(0, 0, 0), "1 / length",
     "absorption coefficient"},
    {"sigma_s", ValueKind::Color, not_negative, Presence::Default, value(0, 0, 0), "1 / length",
     "scattering coefficient"},
    {"sigma_t", ValueKind::Color, not_negative, Presence::Optional, none, "1 / length",
     "extinction coefficient; with albedo, in place of the other two"},
    {"albedo", ValueKind::Color, fraction, Presence::Default, value(0, 0, 0), "",
     "the fraction of the extinction that is scattering"},
    {"g", ValueKind::Number, mean_cosine, Presence::Default, value(0), "",
     "mean cosine of scattering (Henyey-Greenstein): 0 in all directions alike, above 0 forwards"},
};
constexpr Type interiors_table[] = {
    {"homogeneous", "The same medium everywhere in the body.", homogeneous_parameters},
};

} // namespace

std::span<const Type> tables::interior_types() { return interiors_table; }

} // namespace vantor
