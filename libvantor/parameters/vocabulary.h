// The vocabulary: every type that a script can name, and every parameter of it.
#pragma once

#include <array>
#include <limits>
#include <span>
#include <string_view>

namespace vantor {

/// What a script creates. Ids of all entities come from one sequence, so that an id of the wrong kind is recognised.
enum class EntityKind { Camera, Imager, Interface, Interior, Light, Material, Object, Pattern, Texture, Trimmer };

/// What a parameter's value has to be.
enum class ValueKind {
    Number,          ///< A real number or an integer.
    Integer,         ///< An integer.
    Switch,          ///< The integer 0 or 1.
    Color,           ///< A vector3, linear Rec. 709; or one number for all three components.
    Vector2,         ///< A vector2.
    Vector3,         ///< A vector3.
    Scale,           ///< A factor for each coordinate: a vector2, a vector3, or one number for all.
    Text,            ///< A string.
    Choice,          ///< One of the parameter's words. The first is the default.
    InterfaceId,     ///< An integer that newInterface() returned.
    ObjectId,        ///< An integer that newObject() returned.
    PatternId,       ///< An integer that newPattern() returned.
    TextureId,       ///< An integer that newTexture() returned.
    TrimmerIds,      ///< An integer that newTrimmer() returned, or an intarray of such.
    NumberOrPattern, ///< A number, written with a decimal point; an integer is a pattern's id.
    ColorOrPattern,  ///< A vector3 or a number, written with a decimal point; an integer is a pattern's id.
    Matrix4,         ///< A matrix4.
    LongArray,       ///< An intarray.
    DoubleArray,     ///< A floatarray.
    Vector2Array,    ///< A vector2array.
    Vector3Array,    ///< A vector3array.
    TransformArray,  ///< A transformarray.
};

/// The numbers that a parameter takes; each component of a colour or a vector. A value outside is reported and the
/// default stands. Infinities and NaN are never taken.
struct Range {
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();
    bool excludes_zero_vector = false; ///< Or one so short that its direction is lost in floats: below 1e-9.
    std::string_view text = "";        ///< As messages and the page state it.
};

enum class Presence {
    Default,  ///< May be left out; the default then stands.
    Optional, ///< May be left out; the meaning says what then happens.
    Required, ///< Reported when missing.
};

struct Parameter {
    std::string_view name;
    ValueKind kind;
    Range range;
    Presence presence;
    std::array<double, 3> fallback; ///< The default; a number uses the first component.
    std::string_view unit;
    std::string_view meaning;
    std::span<const std::string_view> choices = {}; ///< The words of a Choice.
};

struct Type {
    std::string_view name;
    std::string_view meaning;
    std::span<const Parameter> parameters;
};

/// All types of one kind of entity.
struct EntityNames {
    EntityKind kind;
    std::string_view call; ///< As a script writes it: "newCamera".
    std::string_view noun; ///< With its article: "a camera".
    std::span<const Type> types;
};

/// One entry for each EntityKind, in its order.
std::span<const EntityNames> vocabulary();
const EntityNames &names_of(EntityKind kind);

/// "number", "colour", "vector3", "text", "interface id", "intarray" ...
std::string_view name_of(ValueKind kind);

} // namespace vantor
