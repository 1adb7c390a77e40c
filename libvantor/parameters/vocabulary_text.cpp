// The vocabulary as text.
#include "libvantor/parameters/vocabulary_text.h"

#include "libvantor/base/report.h"

namespace vantor {

namespace {

std::string kind_of(const Parameter &parameter) {
    switch (parameter.kind) {
    case ValueKind::Switch:
        return "switch";
    case ValueKind::Color:
        return "color";
    case ValueKind::Scale:
        return "scale";
    case ValueKind::Choice: {
        std::string words;
        for (const std::string_view choice : parameter.choices)
            words += joined({words.empty() ? "choice:" : ",", choice});
        return words;
    }
    case ValueKind::InterfaceId:
        return "id:interface";
    case ValueKind::ObjectId:
        return "id:object";
    case ValueKind::PatternId:
        return "id:pattern";
    case ValueKind::TextureId:
        return "id:texture";
    case ValueKind::TrimmerIds:
        return "ids:trimmer";
    case ValueKind::NumberOrPattern:
        return "number|id:pattern";
    case ValueKind::ColorOrPattern:
        return "color|id:pattern";
    case ValueKind::Text:
        return "text";
    default:
        return std::string(name_of(parameter.kind));
    }
}

std::string made_text() {
    std::string text;
    for (const EntityNames &names : vocabulary())
        for (const Type &type : names.types) {
            text += joined({names.call, "\t", type.name, "\t", type.meaning, "\n"});
            for (const Parameter &p : type.parameters)
                text += joined({names.call, "\t", type.name, "\t", p.name, "\t", kind_of(p), "\t", p.unit, "\t",
                                p.range.text, "\t", default_of(p), "\t", p.meaning, "\n"});
        }
    return text;
}

} // namespace

std::string default_of(const Parameter &parameter) {
    if (parameter.presence == Presence::Required)
        return "required";
    if (parameter.presence == Presence::Optional)
        return "none";
    if (parameter.kind == ValueKind::Choice)
        return in_quotes(parameter.choices.front());
    const auto &n = parameter.fallback;
    const std::string first = text_of(n[0]);
    const std::string second = text_of(n[1]);
    if (parameter.kind == ValueKind::Vector2)
        return joined({"(", first, ", ", second, ")"});
    const bool is_color = parameter.kind == ValueKind::Color || parameter.kind == ValueKind::ColorOrPattern;
    const bool has_three = parameter.kind == ValueKind::Vector3 || (is_color && !(n[0] == n[1] && n[1] == n[2]));
    return has_three ? joined({"(", first, ", ", second, ", ", text_of(n[2]), ")"}) : first;
}

const std::string &vocabulary_text() {
    static const std::string text = made_text();
    return text;
}

} // namespace vantor
