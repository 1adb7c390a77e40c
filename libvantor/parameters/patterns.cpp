// Patterns: their types and parameters.
#include "libvantor/parameters/ranges.h"
#include "libvantor/parameters/tables.h"

namespace vantor {

using namespace tables;

namespace {

constexpr std::string_view uv_or_object[] = {"uv", "object"};
constexpr std::string_view object_or_uv[] = {"object", "uv"};
constexpr std::string_view wraps[] = {"repeat", "clamp", "mirror", "black"};
constexpr std::string_view filters[] = {"bilinear", "nearest", "trilinear"};
constexpr std::string_view color_spaces[] = {"file", "srgb", "linear"};
constexpr std::string_view channels[] = {"color", "red", "green", "blue", "alpha"};
constexpr std::string_view mix_modes[] = {"mix", "multiply", "add"};

constexpr Parameter a_parameter = {"a", ValueKind::ColorOrPattern, not_negative, Presence::Default, value(0, 0, 0),
                                   "",  "the first colour"};
constexpr Parameter b_parameter = {"b", ValueKind::ColorOrPattern, not_negative, Presence::Default, value(1, 1, 1),
                                   "",  "the second colour"};
constexpr Parameter scale_parameter = {"scale",        ValueKind::Scale, coordinate, Presence::Default,
                                       value(1, 1, 1), "1 / length",     ""};

constexpr std::string_view space_meaning =
    "where the pattern lies: in the texture coordinates, or in the object's space";

constexpr Parameter with_meaning(Parameter parameter, std::string_view meaning) {
    parameter.meaning = meaning;
    return parameter;
}

constexpr Parameter checker_parameters[] = {
    with_meaning(a_parameter, "the colour of the square or cube that lies at the origin"),
    with_meaning(b_parameter, "the colour of its neighbours"),
    with_meaning(scale_parameter, "how many squares or cubes lie on a length of 1"),
    {"space", ValueKind::Choice, any, Presence::Default, none, "", space_meaning, uv_or_object},
};
constexpr Parameter gradient_parameters[] = {
    {"colors", ValueKind::Vector3Array, any, Presence::Required, none, "", "the colours, in their order"},
    {"positions", ValueKind::DoubleArray, any, Presence::Optional, none, "",
     "a position for each colour, none below the one before; left out, they are evenly spaced from 0 to 1"},
    {"origin", ValueKind::Vector3, coordinate, Presence::Default, value(0, 0, 0), "length", "where the position is 0"},
    {"direction", ValueKind::Vector3, direction, Presence::Default, value(1, 0, 0), "length",
     "from the origin to where the position is 1"},
    {"space", ValueKind::Choice, any, Presence::Default, none, "", space_meaning, uv_or_object},
};
constexpr Parameter image_parameters[] = {
    {"texture", ValueKind::TextureId, any, Presence::Required, none, "", "the picture"},
    with_meaning(scale_parameter, "how many pictures lie on a length of 1 of u and v"),
    {"offset", ValueKind::Vector2, coordinate, Presence::Default, value(0, 0, 0), "",
     "what is added to (u, v) after the scale; 1 is a picture"},
    {"wrap", ValueKind::Choice, any, Presence::Default, none, "", "what lies beyond the picture", wraps},
    {"filter", ValueKind::Choice, any, Presence::Default, none, "",
     "what lies between the middles of pixels; trilinear takes means over what a pixel of the rendering sees", filters},
    {"channel", ValueKind::Choice, any, Presence::Default, none, "",
     "what the pattern shows; one channel as a grey, the alpha as 1 where the file has none", channels},
    {"color_space", ValueKind::Choice, any, Presence::Default, none, "",
     "how the numbers of the file are taken; file: sRGB in PNG and JPEG files, linear in all others", color_spaces},
};
constexpr Parameter mix_parameters[] = {
    a_parameter,
    b_parameter,
    {"amount", ValueKind::NumberOrPattern, fraction, Presence::Default, value(0.5), "",
     "how much of b: a mix is a (1 - amount) + b amount"},
    {"mode", ValueKind::Choice, any, Presence::Default, none, "",
     "multiply is a (1 - amount + b amount), add is a + b amount", mix_modes},
};
constexpr Parameter noise_parameters[] = {
    with_meaning(a_parameter, "the colour where the noise is least"),
    with_meaning(b_parameter, "the colour where it is greatest"),
    with_meaning(scale_parameter, "how many features of the coarsest octave lie on a length of 1"),
    {"octaves", ValueKind::Integer, octave_count, Presence::Default, value(4, 4, 4), "",
     "how many noises are summed, each finer and weaker than the one before"},
    {"lacunarity", ValueKind::Number, lacunarity, Presence::Default, value(2, 2, 2), "", "how much finer"},
    {"gain", ValueKind::Number, fraction, Presence::Default, value(0.5, 0.5, 0.5), "", "how much weaker"},
    {"space", ValueKind::Choice, any, Presence::Default, none, "", space_meaning, object_or_uv},
};
constexpr Type patterns_table[] = {
    {"checker", "Squares or cubes of two colours in turn.", checker_parameters},
    {"gradient", "Colours that follow each other along a direction; beyond its ends the first and the last.",
     gradient_parameters},
    {"image", "A picture over the texture coordinates.", image_parameters},
    {"mix", "Two colours or patterns, mixed, multiplied or added.", mix_parameters},
    {"noise", "A fractal sum of gradient noise between two colours.", noise_parameters},
};

} // namespace

std::span<const Type> tables::pattern_types() { return patterns_table; }

} // namespace vantor
