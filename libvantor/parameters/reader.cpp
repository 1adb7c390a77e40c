// The reader: a parameter list against the table of its type.
#include "libvantor/parameters/reader.h"

#include "libvantor/parameters/suggestion.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace vantor {

namespace {

// "an integer", "a vector3"; "0 or 1" takes no article.
std::string with_article(std::string_view noun) {
    const char first = noun.front();
    if (first >= '0' && first <= '9')
        return std::string(noun);
    return joined({std::string_view("aeiou").find(first) == std::string_view::npos ? "a " : "an ", noun});
}

std::string_view name_of(VtArgTag tag) {
    switch (tag) {
    case VtArgTag::Long:
        return "an integer";
    case VtArgTag::Double:
        return "a number";
    case VtArgTag::Text:
        return "a string";
    case VtArgTag::Vector2:
        return "a vector2";
    case VtArgTag::Vector3:
        return "a vector3";
    case VtArgTag::Vector4:
        return "a vector4";
    case VtArgTag::Matrix2:
        return "a matrix2";
    case VtArgTag::Matrix3:
        return "a matrix3";
    case VtArgTag::Matrix4:
        return "a matrix4";
    case VtArgTag::Transform:
        return "a transform";
    case VtArgTag::LongArray:
        return "an intarray";
    case VtArgTag::DoubleArray:
        return "a floatarray";
    case VtArgTag::Vector2Array:
        return "a vector2array";
    case VtArgTag::Vector3Array:
        return "a vector3array";
    case VtArgTag::Vector4Array:
        return "a vector4array";
    case VtArgTag::Matrix2Array:
        return "a matrix2array";
    case VtArgTag::Matrix3Array:
        return "a matrix3array";
    case VtArgTag::Matrix4Array:
        return "a matrix4array";
    case VtArgTag::TransformArray:
        return "a transformarray";
    }
    return "a value of an unknown kind";
}

bool is_kind(ValueKind kind, VtArgTag tag) {
    const bool is_number = tag == VtArgTag::Long || tag == VtArgTag::Double;
    switch (kind) {
    case ValueKind::Number:
    case ValueKind::NumberOrPattern:
        return is_number;
    case ValueKind::Integer:
    case ValueKind::Switch:
    case ValueKind::InterfaceId:
    case ValueKind::ObjectId:
    case ValueKind::PatternId:
    case ValueKind::TextureId:
        return tag == VtArgTag::Long;
    case ValueKind::Color:
    case ValueKind::ColorOrPattern:
        return is_number || tag == VtArgTag::Vector3;
    case ValueKind::Vector2:
        return tag == VtArgTag::Vector2;
    case ValueKind::Vector3:
        return tag == VtArgTag::Vector3;
    case ValueKind::Scale:
        return is_number || tag == VtArgTag::Vector2 || tag == VtArgTag::Vector3;
    case ValueKind::Text:
    case ValueKind::Choice:
        return tag == VtArgTag::Text;
    case ValueKind::TrimmerIds:
        return tag == VtArgTag::Long || tag == VtArgTag::LongArray;
    case ValueKind::Matrix4:
        return tag == VtArgTag::Matrix4;
    case ValueKind::LongArray:
        return tag == VtArgTag::LongArray;
    case ValueKind::DoubleArray:
        return tag == VtArgTag::DoubleArray;
    case ValueKind::Vector2Array:
        return tag == VtArgTag::Vector2Array;
    case ValueKind::Vector3Array:
        return tag == VtArgTag::Vector3Array;
    case ValueKind::TransformArray:
        return tag == VtArgTag::TransformArray;
    }
    return false;
}

// Whether the range speaks of a value of that kind: it is numbers, and no pattern's id.
bool has_range(ValueKind kind, VtArgTag tag) {
    switch (kind) {
    case ValueKind::Number:
    case ValueKind::Integer:
    case ValueKind::Switch:
    case ValueKind::Color:
    case ValueKind::Vector2:
    case ValueKind::Vector3:
    case ValueKind::Scale:
        return true;
    case ValueKind::NumberOrPattern:
    case ValueKind::ColorOrPattern:
        return tag != VtArgTag::Long;
    default:
        return false;
    }
}

// The numbers of a value: itself, three times, or the components. Other kinds have none.
std::array<double, 3> numbers_of(const VtArgType &value) {
    switch (value.Tag()) {
    case VtArgTag::Long: {
        const double n = value.Long();
        return {n, n, n};
    }
    case VtArgTag::Double: {
        const double n = value.Double();
        return {n, n, n};
    }
    case VtArgTag::Vector2: {
        const VtVector2 &v = value.Vector2();
        return {v[0], v[1], v[0]}; // no third component to be out of range
    }
    case VtArgTag::Vector3: {
        const VtVector3 &v = value.Vector3();
        return {v[0], v[1], v[2]};
    }
    default:
        return {};
    }
}

std::string text_of(const VtArgType &value) {
    if (value.Tag() == VtArgTag::Long)
        return std::to_string(value.Long());
    if (value.Tag() == VtArgTag::Double)
        return vantor::text_of(value.Double());
    const std::array<double, 3> n = numbers_of(value);
    const std::string third = value.Tag() == VtArgTag::Vector3 ? joined({", ", vantor::text_of(n[2])}) : std::string();
    return joined({"(", vantor::text_of(n[0]), ", ", vantor::text_of(n[1]), third, ")"});
}

// What is wrong with the value of a parameter, as it follows the name; empty if nothing is.
std::string complaint(const Parameter &parameter, const VtArgType &value, const std::array<double, 3> &numbers) {
    if (parameter.kind == ValueKind::Choice) {
        const std::string_view word = value.Text();
        if (std::ranges::find(parameter.choices, word) != parameter.choices.end())
            return {};
        return joined({": unknown word ", in_quotes(word),
                       suggestion(word, Words(parameter.choices.begin(), parameter.choices.end()))});
    }
    if (!has_range(parameter.kind, value.Tag()))
        return {};

    const Range &range = parameter.range;
    bool is_inside = true;
    bool is_zero = true;
    for (const double n : numbers) {
        // Rendering computes in floats; beyond this, squares overflow.
        constexpr double largest = 1e18;
        if (!(std::fabs(n) <= largest))
            return joined({" is out of range: expected finite numbers up to 1e18, got ", text_of(value)});
        is_inside &= n >= range.low && n <= range.high;
        is_zero &= std::fabs(n) < 1e-9;
    }
    if (is_inside && !(is_zero && range.excludes_zero_vector))
        return {};
    const bool may_be_an_id = parameter.kind == ValueKind::Color && value.Tag() == VtArgTag::Long;
    return joined({" is out of range: expected ", range.text, ", got ", text_of(value),
                   may_be_an_id ? " (no pattern can stand here)" : ""});
}

} // namespace

Parameters::Parameters(const Type &of_type) : type(of_type) {
    values.reserve(type.parameters.size());
    for (const Parameter &parameter : type.parameters)
        values.push_back({nullptr, -1, parameter.fallback});
}

const Parameters::Value &Parameters::find(std::string_view name) const {
    for (std::size_t i = 0; i < values.size(); ++i)
        if (type.parameters[i].name == name)
            return values[i];
    throw std::logic_error("no such parameter in the table: " + std::string(name));
}

const Parameter &Parameters::parameter_of(const Value &value) const {
    return type.parameters[static_cast<std::size_t>(&value - values.data())];
}

VtVector3 Parameters::vector(std::string_view name) const {
    const std::array<double, 3> &n = find(name).numbers;
    return {n[0], n[1], n[2]};
}

VtVector3 Parameters::fallback(std::string_view name) const {
    const std::array<double, 3> &n = parameter_of(find(name)).fallback;
    return {n[0], n[1], n[2]};
}

std::string_view Parameters::choice(std::string_view name) const {
    const Value &value = find(name);
    return value.given ? std::string_view(value.given->Text()) : parameter_of(value).choices.front();
}

std::vector<VtLong> Parameters::ids(std::string_view name) const {
    const VtArgType &given = *find(name).given;
    if (given.Tag() == VtArgTag::Long)
        return {given.Long()};
    return copied(given.LongArray());
}

bool Parameters::knows(std::string_view name) const {
    return std::ranges::find(type.parameters, name, &Parameter::name) != type.parameters.end();
}

const VtInstanceArray<double> &Parameters::double_array(std::string_view name) const {
    return find(name).given->DoubleArray();
}

const VtInstanceArray<VtTransform> &Parameters::transform_array(std::string_view name) const {
    return find(name).given->TransformArray();
}

const VtInstanceArray<VtVector2> &Parameters::vector2_array(std::string_view name) const {
    return find(name).given->Vector2Array();
}

const VtInstanceArray<VtVector3> &Parameters::vector3_array(std::string_view name) const {
    return find(name).given->Vector3Array();
}

void Parameters::complain(std::string_view name, std::string_view text, const CallReport &report) const {
    report.diagnostic_at(find(name).item, joined({"parameter ", in_quotes(name), " ", text}));
}

void Parameters::complain_without(std::string_view other, std::initializer_list<std::string_view> names,
                                  const CallReport &report) const {
    for (const std::string_view name : names)
        if (is_given(name) && !is_given(other))
            complain(name, joined({"has no effect without ", in_quotes(other)}), report);
}

void Parameters::complain_beside(std::string_view other, std::initializer_list<std::string_view> names,
                                 const CallReport &report) const {
    for (const std::string_view name : names)
        if (is_given(name) && is_given(other))
            complain(name, joined({"has no effect beside ", in_quotes(other)}), report);
}

bool Parameters::is_complete() const {
    for (std::size_t i = 0; i < values.size(); ++i)
        if (type.parameters[i].presence == Presence::Required && !values[i].given)
            return false;
    return true;
}

const Type *find_type(EntityKind kind, const char *name, const CallReport &report) {
    const EntityNames &names = names_of(kind);
    for (const Type &type : names.types)
        if (name && type.name == name)
            return &type;
    report.diagnostic(joined({name ? "unknown type" : "no type given", type_suggestion(kind, name ? name : "")}));
    return nullptr;
}

Parameters read_parameters(const Type &type, const VtArgList &list, const CallReport &report) {
    Parameters result(type);
    // A parameter whose value was reported is not reported as missing, too.
    std::vector<bool> is_spoken_of(type.parameters.size());
    const auto speak_of = [&](const Parameter *parameter) {
        if (parameter)
            is_spoken_of[static_cast<std::size_t>(parameter - type.parameters.data())] = true;
    };
    const VtLong count = list.Count();
    for (VtLong i = 0; i < count; ++i) {
        const VtArgType &name_value = list.At(i);
        if (name_value.Tag() != VtArgTag::Text) {
            report.diagnostic_at(i, joined({"expected a parameter name, got ", name_of(name_value.Tag())}));
            continue;
        }

        // A name; whatever follows is its value, even if the name is unknown.
        const std::string_view name = name_value.Text();
        const VtLong value_at = i + 1;
        const auto parameter = std::ranges::find(type.parameters, name, &Parameter::name);
        if (parameter == type.parameters.end()) {
            const Words known = names_in(type.parameters);
            report.diagnostic_at(i, joined({"unknown parameter ", in_quotes(name), suggestion(name, known)}));
            const auto meant = std::ranges::find(type.parameters, word_meant(name, known), &Parameter::name);
            speak_of(meant == type.parameters.end() ? nullptr : &*meant);
            ++i;
            continue;
        }
        const std::string called = joined({"parameter ", in_quotes(name)});
        if (value_at == count) {
            speak_of(&*parameter);
            report.diagnostic_at(
                i, joined({called, " has no value (expected ", with_article(name_of(parameter->kind)), ")"}));
            break;
        }
        ++i;

        const VtArgType &value = list.At(value_at);
        if (!is_kind(parameter->kind, value.Tag())) {
            speak_of(&*parameter);
            report.diagnostic_at(value_at, joined({called, " expects ", with_article(name_of(parameter->kind)),
                                                   ", got ", name_of(value.Tag())}));
            continue;
        }
        const std::array<double, 3> numbers = numbers_of(value);
        if (const std::string wrong = complaint(*parameter, value, numbers); !wrong.empty()) {
            speak_of(&*parameter);
            report.diagnostic_at(value_at, joined({called, wrong}));
            continue;
        }
        Parameters::Value &place = result.values[static_cast<std::size_t>(parameter - type.parameters.begin())];
        if (place.given)
            report.diagnostic_at(value_at, joined({called, " is given twice (the later value counts)"}));
        place = {&value, value_at, numbers};
    }

    for (std::size_t i = 0; i < type.parameters.size(); ++i) {
        const Parameter &parameter = type.parameters[i];
        if (parameter.presence == Presence::Required && !result.values[i].given && !is_spoken_of[i])
            report.diagnostic(joined({"parameter ", in_quotes(parameter.name), " is missing (expected ",
                                      with_article(name_of(parameter.kind)), ": ", parameter.meaning, ")"}));
    }
    return result;
}

} // namespace vantor
