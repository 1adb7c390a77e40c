// The vocabulary: all tables together.
#include "libvantor/parameters/vocabulary.h"

#include "libvantor/parameters/tables.h"

namespace vantor {

namespace {

// Made at the first use: the tables stand in other files, whose order at start is nobody's.
std::span<const EntityWords> all_words() {
    static const EntityWords words[] = {
        {EntityKind::Camera, "newCamera", "a camera", words::camera_types()},
        {EntityKind::Imager, "newImager", "an imager", words::imager_types()},
        {EntityKind::Interface, "newInterface", "an interface", words::interface_types()},
        {EntityKind::Interior, "newInterior", "an interior", words::interior_types()},
        {EntityKind::Light, "newLight", "a light", words::light_types()},
        {EntityKind::Material, "newMaterial", "a material", words::material_types()},
        {EntityKind::Object, "newObject", "an object", words::object_types()},
        {EntityKind::Pattern, "newPattern", "a pattern", words::pattern_types()},
        {EntityKind::Texture, "newTexture", "a texture", {}},
        {EntityKind::Trimmer, "newTrimmer", "a trimmer", words::trimmer_types()},
    };
    return words;
}

} // namespace

std::span<const EntityWords> vocabulary() { return all_words(); }

const EntityWords &names_of(EntityKind kind) { return all_words()[static_cast<int>(kind)]; }

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
        return "text";
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
