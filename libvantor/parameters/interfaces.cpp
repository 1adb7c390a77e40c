// Interfaces: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr std::string_view metal_words[] = {"custom", "aluminium", "copper", "gold", "silver"};

constexpr Parameter roughness_parameter{
    "roughness",
    ValueKind::Number,
    fraction,
    Presence::Default,
    none,
    "",
    "0 is smooth, as is all below 0.03; its square is the alpha of GGX microfacets"};

constexpr Parameter conductor_parameters[] = {
    {"metal", ValueKind::Choice, any, Presence::Default, none, "", "a metal by its name; \"custom\" takes eta and k",
     metal_words},
    {"eta", ValueKind::Color, metal_index, Presence::Default, value(1, 1, 1), "",
     "the index of refraction of a \"custom\" metal, for red, green and blue"},
    {"k", ValueKind::Color, metal_index, Presence::Default, value(6, 6, 6), "", "its index of extinction"},
    {"color", ValueKind::Color, fraction, Presence::Default, value(1, 1, 1), "",
     "what the reflected light is multiplied by"},
    roughness_parameter,
};
constexpr Parameter dielectric_parameters[] = {
    {"ior", ValueKind::Number, index_ratio, Presence::Default, value(1.5), "",
     "the index of refraction of the inside over that of the outside; the outside is the front"},
    {"color", ValueKind::Color, fraction, Presence::Default, value(1, 1, 1), "",
     "what light is multiplied by each time that it passes through"},
    roughness_parameter,
};
constexpr Parameter diffuse_parameters[] = {
    {"reflectance", ValueKind::Color, fraction, Presence::Default, value(0.5, 0.5, 0.5), "",
     "the fraction of light that is reflected"},
};
constexpr Parameter plastic_parameters[] = {
    {"color", ValueKind::Color, fraction, Presence::Default, value(0.5, 0.5, 0.5), "",
     "the colour of the body under the coat"},
    {"ior", ValueKind::Number, coat_index, Presence::Default, value(1.5), "", "the index of refraction of the coat"},
    roughness_parameter,
};
constexpr Parameter principled_parameters[] = {
    {"base_color", ValueKind::Color, fraction, Presence::Default, value(0.5, 0.5, 0.5), "",
     "the colour of the body, of the metal, and of light that has gone through the glass"},
    {"metallic", ValueKind::Number, fraction, Presence::Default, none, "",
     "the fraction of metal; the rest is body and glass"},
    {"roughness", ValueKind::Number, fraction, Presence::Default, value(0.5), "",
     "of all but the coat; below 0.03 it counts as 0.03"},
    {"specular", ValueKind::Number, fraction, Presence::Default, value(0.5), "",
     "the gloss on the body, which reflects 0.08 times as much straight on"},
    {"clearcoat", ValueKind::Number, fraction, Presence::Default, none, "",
     "the fraction of a clear coat over all of it, with an index of refraction of 1.5"},
    {"clearcoat_roughness", ValueKind::Number, fraction, Presence::Default, value(0.1), "",
     "of the coat; below 0.03 it counts as 0.03"},
    {"sheen", ValueKind::Number, fraction, Presence::Default, none, "",
     "white at grazing angles on the body, as of cloth"},
    {"transmission", ValueKind::Number, fraction, Presence::Default, none, "",
     "the fraction of glass in what is no metal; the rest is body"},
    {"ior", ValueKind::Number, coat_index, Presence::Default, value(1.5), "",
     "the index of refraction of the glass; the outside is the front"},
};
constexpr Type interfaces_table[] = {
    {"conductor", "Reflects like a metal, on both sides.", conductor_parameters},
    {"dielectric", "A clear boundary, as of glass or water: reflects a part of the light and refracts the rest.",
     dielectric_parameters},
    {"diffuse", "Reflects light equally in all directions, on both sides (Lambert).", diffuse_parameters},
    {"plastic", "A diffuse body under a clear coat, as of paint, on both sides.", plastic_parameters},
    {"principled",
     "Most surfaces by a few numbers: fractions of metal, glossy body and glass, sheen, and a clear coat (after Burley "
     "2012 and 2015).",
     principled_parameters},
};

} // namespace

std::span<const Type> tables::interface_types() { return interfaces_table; }
std::span<const Parameter> tables::diffuse_words() { return diffuse_parameters; }

} // namespace vantor
