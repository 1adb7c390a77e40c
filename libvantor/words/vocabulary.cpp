// The vocabulary: the tables.
#include "libvantor/words/vocabulary.h"

namespace vantor {

namespace {

constexpr Range any{};
constexpr Range not_negative{.low = 0.0, .text = "0 or more"};
// Far beyond any scene, and well within what floats can square twice.
constexpr Range coordinate{.low = -1e9, .high = 1e9, .text = "-1e9 to 1e9"};
constexpr Range direction{.low = -1e9, .high = 1e9, .excludes_zero_vector = true, .text = "-1e9 to 1e9, not all 0"};
constexpr Range size{.low = 1e-9, .high = 1e9, .text = "1e-9 to 1e9"};
constexpr Range fraction{.low = 0.0, .high = 1.0, .text = "0 to 1"};
constexpr Range field_of_view{.low = 1e-3, .high = 179.0, .text = "0.001 to 179"};
constexpr Range stops{.low = -100.0, .high = 100.0, .text = "-100 to 100"};

constexpr std::array<double, 3> none{};

constexpr Parameter perspective_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "where the camera stands"},
    {"target", ValueKind::Vector3, coordinate, Presence::Optional, none, "length",
     "the point that it looks at; left out, it looks along -Z"},
    {"up", ValueKind::Vector3, direction, Presence::Default, {0, 1, 0}, "", "the direction that is up in the picture"},
    {"fov", ValueKind::Number, field_of_view, Presence::Default, {45}, "degrees", "vertical field of view"},
};
constexpr Type cameras[] = {
    {"perspective", "A pinhole camera.", perspective_parameters},
};

constexpr Parameter file_parameters[] = {
    {"name", ValueKind::Text, any, Presence::Required, none, "", "the picture's path; it ends in .png or .exr"},
    {"exposure", ValueKind::Number, stops, Presence::Default, {0}, "stops", "the picture is multiplied by 2^exposure"},
};
constexpr Type imagers[] = {
    {"file", "Writes the picture to a file: .png 8 bits a channel, sRGB; .exr floats, linear.", file_parameters},
};

constexpr Parameter diffuse_parameters[] = {
    {"reflectance",
     ValueKind::Color,
     fraction,
     Presence::Default,
     {0.5, 0.5, 0.5},
     "",
     "the fraction of light that is reflected"},
};
constexpr Type interfaces[] = {
    {"diffuse", "Reflects light equally in all directions, on both sides (Lambert).", diffuse_parameters},
};

constexpr Parameter surface_parameters[] = {
    {"interface", ValueKind::InterfaceId, any, Presence::Required, none, "", "how the surface scatters light"},
};
constexpr Type materials[] = {
    {"diffuse", "A surface with a diffuse interface, in one step.", diffuse_parameters},
    {"surface", "A surface with an interface of its own.", surface_parameters},
};

constexpr Parameter area_parameters[] = {
    {"radiance",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / (area * solid angle)",
     "the radiance that leaves the front of every object in its light block"},
};
constexpr Parameter distant_parameters[] = {
    {"direction", ValueKind::Vector3, direction, Presence::Default, {0, 0, -1}, "", "the way the light travels"},
    {"irradiance",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / area",
     "the irradiance of a surface that faces the light"},
};
constexpr Parameter point_parameters[] = {
    {"position", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "where the light stands"},
    {"intensity",
     ValueKind::Color,
     not_negative,
     Presence::Default,
     {1, 1, 1},
     "power / solid angle",
     "the same in all directions"},
};
constexpr Type lights[] = {
    {"area", "Shines from the objects that are added in a light block.", area_parameters},
    {"distant", "Parallel light from far away.", distant_parameters},
    {"point", "Shines from one point in all directions.", point_parameters},
};

constexpr Parameter box_parameters[] = {
    {"min",
     ValueKind::Vector3,
     any,
     Presence::Default,
     {-1, -1, -1},
     "length",
     "the corner with the least coordinates"},
    {"max",
     ValueKind::Vector3,
     any,
     Presence::Default,
     {1, 1, 1},
     "length",
     "the corner with the greatest coordinates"},
};
constexpr Parameter mesh_parameters[] = {
    {"points", ValueKind::Vector3Array, any, Presence::Required, none, "length", "the corners of the triangles"},
    {"triangles", ValueKind::LongArray, any, Presence::Required, none, "",
     "three indices of points, from 0, for each triangle"},
    {"normals", ValueKind::Vector3Array, any, Presence::Optional, none, "",
     "a normal for each point; left out, triangles are flat"},
    {"uvs", ValueKind::Vector2Array, any, Presence::Optional, none, "",
     "a texture coordinate for each point; counted, but nothing reads it yet"},
};
constexpr Parameter quad_parameters[] = {
    {"origin", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "one corner of a parallelogram"},
    {"edge_u",
     ValueKind::Vector3,
     direction,
     Presence::Default,
     {1, 0, 0},
     "length",
     "from the origin to the next corner"},
    {"edge_v",
     ValueKind::Vector3,
     direction,
     Presence::Default,
     {0, 1, 0},
     "length",
     "from the origin to the other neighbour; edge_u x edge_v points to the front"},
    {"corners", ValueKind::Vector3Array, any, Presence::Optional, none, "length",
     "four corners in place of origin and edges, counter-clockwise when seen from the front"},
};
constexpr Parameter sphere_parameters[] = {
    {"center", ValueKind::Vector3, coordinate, Presence::Default, {0, 0, 0}, "length", "its centre"},
    {"radius", ValueKind::Number, size, Presence::Default, {1}, "length", "its radius"},
};
constexpr Type objects[] = {
    {"box", "A box along the axes; its front is outside.", box_parameters},
    {"mesh", "Triangles; the front is where their corners appear counter-clockwise.", mesh_parameters},
    {"quad", "A parallelogram, or any four corners.", quad_parameters},
    {"sphere", "A sphere; its front is outside.", sphere_parameters},
};

constexpr EntityWords words[] = {
    {EntityKind::Camera, "newCamera", "a camera", "cameras", cameras},
    {EntityKind::Imager, "newImager", "an imager", "imagers", imagers},
    {EntityKind::Interface, "newInterface", "an interface", "interfaces", interfaces},
    {EntityKind::Interior, "newInterior", "an interior", "interiors", {}},
    {EntityKind::Light, "newLight", "a light", "lights", lights},
    {EntityKind::Material, "newMaterial", "a material", "materials", materials},
    {EntityKind::Object, "newObject", "an object", "objects", objects},
    {EntityKind::Pattern, "newPattern", "a pattern", "patterns", {}},
    {EntityKind::Texture, "newTexture", "a texture", "textures", {}},
    {EntityKind::Trimmer, "newTrimmer", "a trimmer", "trimmers", {}},
};

} // namespace

std::span<const EntityWords> vocabulary() { return words; }

const EntityWords &words_of(EntityKind kind) { return words[static_cast<int>(kind)]; }

std::string_view name_of(ValueKind kind) {
    switch (kind) {
    case ValueKind::Number:
        return "number";
    case ValueKind::Color:
        return "colour (vector3 or number)";
    case ValueKind::Vector3:
        return "vector3";
    case ValueKind::Text:
        return "text";
    case ValueKind::InterfaceId:
        return "interface id (integer)";
    case ValueKind::LongArray:
        return "intarray";
    case ValueKind::Vector2Array:
        return "vector2array";
    case ValueKind::Vector3Array:
        return "vector3array";
    }
    return "";
}

} // namespace vantor
