// The vocabulary: all tables together.
#include "libvantor/parameters/vocabulary.h"

#include "libvantor/parameters/tables.h"

namespace vantor {

namespace {

// Made at the first use: the tables are static objects of other files, whose order of construction is unspecified.
std::span<const EntityNames> all_tables() {
    static const EntityNames names[] = {
        {EntityKind::Camera, "newCamera", "a camera", tables::camera_types()},
        {EntityKind::Imager, "newImager", "an imager", tables::imager_types()},
        {EntityKind::Interface, "newInterface", "an interface", tables::interface_types()},
        {EntityKind::Interior, "newInterior", "an interior", tables::interior_types()},
        {EntityKind::Light, "newLight", "a light", tables::light_types()},
        {EntityKind::Material, "newMaterial", "a material", tables::material_types()},
        {EntityKind::Object, "newObject", "an object", tables::object_types()},
        {EntityKind::Pattern, "newPattern", "a pattern", tables::pattern_types()},
        {EntityKind::Texture, "newTexture", "a texture", {}},
        {EntityKind::Trimmer, "newTrimmer", "a trimmer", tables::trimmer_types()},
    };
    return names;
}

} // namespace

std::span<const EntityNames> vocabulary() { return all_tables(); }

const EntityNames &names_of(EntityKind kind) { return all_tables()[static_cast<int>(kind)]; }

std::string_view name_of(ValueKind kind) {
    switch (kind) {
    case ValueKind::Number:
        return "number";
    case ValueKind::Integer:
        return "integer";
    case ValueKind::Switch:
        return "0 or 1";
    case ValueKind::Color:
        return "colour (vector3 or number)";
    case ValueKind::Vector2:
        return "vector2";
    case ValueKind::Vector3:
        return "vector3";
    case ValueKind::Scale:
        return "number, vector2 or vector3";
    case ValueKind::Text:
    case ValueKind::Choice:
        return "string";
    case ValueKind::InterfaceId:
        return "interface id (integer)";
    case ValueKind::ObjectId:
        return "object id (integer)";
    case ValueKind::PatternId:
        return "pattern id (integer)";
    case ValueKind::TextureId:
        return "texture id (integer)";
    case ValueKind::TrimmerIds:
        return "trimmer id (integer) or intarray of them";
    case ValueKind::NumberOrPattern:
        return "number with a decimal point, or pattern id (integer)";
    case ValueKind::ColorOrPattern:
        return "colour (vector3 or number with a decimal point), or pattern id (integer)";
    case ValueKind::Matrix4:
        return "matrix4";
    case ValueKind::LongArray:
        return "intarray";
    case ValueKind::DoubleArray:
        return "floatarray";
    case ValueKind::Vector2Array:
        return "vector2array";
    case ValueKind::Vector3Array:
        return "vector3array";
    case ValueKind::TransformArray:
        return "transformarray";
    }
    return "";
}

} // namespace vantor
