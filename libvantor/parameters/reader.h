// The reader: a parameter list against the table of its type.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/report.h"
#include "libvantor/parameters/vocabulary.h"
#include "renderer/vt_arg_list.h"

#include <functional>
#include <initializer_list>
#include <type_traits>
#include <vector>

namespace vantor {

/// The parameters of one creation call: for each parameter of the type the value that the script gave, or the default.
/// Every name asked for must stand in the type's table, and be of that kind.
class Parameters {
  public:
    /// All defaults.
    explicit Parameters(const Type &of_type);

    double number(std::string_view name) const { return find(name).numbers[0]; }
    VtVector3 vector(std::string_view name) const;
    Color color(std::string_view name) const { return to_color(vector(name)); }
    VtVector3 fallback(std::string_view name) const; ///< Of a value that turns out to be of no use.
    const char *text(std::string_view name) const { return find(name).given->Text(); }
    VtLong integer(std::string_view name) const { return static_cast<VtLong>(number(name)); }
    bool is_on(std::string_view name) const { return number(name) != 0; }
    std::string_view choice(std::string_view name) const;
    /// The integers of a TrimmerIds.
    std::vector<VtLong> ids(std::string_view name) const;
    VtLong id(std::string_view name) const { return find(name).given->Long(); }

    /// Whether a ColorOrPattern or a NumberOrPattern is given as a pattern, whose id() it then has.
    bool is_pattern(std::string_view name) const { return is_given(name) && find(name).given->Tag() == VtArgTag::Long; }
    const VtMatrix4 &matrix4(std::string_view name) const { return find(name).given->Matrix4(); }
    const VtInstanceArray<VtLong> &long_array(std::string_view name) const { return find(name).given->LongArray(); }
    const VtInstanceArray<double> &double_array(std::string_view name) const;
    const VtInstanceArray<VtTransform> &transform_array(std::string_view name) const;
    const VtInstanceArray<VtVector2> &vector2_array(std::string_view name) const;
    const VtInstanceArray<VtVector3> &vector3_array(std::string_view name) const;

    ValueKind kind(std::string_view name) const { return parameter_of(find(name)).kind; }

    /// Whether the type has a parameter of that name at all.
    bool knows(std::string_view name) const;

    /// Whether the script gave the parameter, with a value that could be used.
    bool is_given(std::string_view name) const { return find(name).given != nullptr; }

    /// Reports what is wrong with the value of a parameter that is given: "item <i>: parameter "<name>" <text>".
    void complain(std::string_view name, std::string_view text, const CallReport &report) const;

    /// Reports that parameters have no effect: without another one, or beside it.
    void complain_without(std::string_view other, std::initializer_list<std::string_view> names,
                          const CallReport &report) const;
    void complain_beside(std::string_view other, std::initializer_list<std::string_view> names,
                         const CallReport &report) const;

    /// Whether every required parameter is given.
    bool is_complete() const;

  private:
    friend Parameters read_parameters(const Type &type, const VtArgList &list, const CallReport &report);

    struct Value {
        const VtArgType *given = nullptr;
        long item = -1;
        std::array<double, 3> numbers{};
    };
    const Value &find(std::string_view name) const;
    const Parameter &parameter_of(const Value &value) const;

    const Type &type;
    std::vector<Value> values; // in the order of the type's table
};

/// The type of that name; null after reporting an unknown or missing name.
const Type *find_type(EntityKind kind, const char *name, const CallReport &report);

/// Reads a list of names and values. Whatever is wrong with it is reported and left out.
Parameters read_parameters(const Type &type, const VtArgList &list, const CallReport &report);

/// How many of its elements the array really has: fewer than its size, if that is negative or memory ran out.
template <class Element> VtLong stored_count(const VtInstanceArray<Element> &array) {
    VtLong stored = 0;
    array.ForEachBlock([&](const Element *, VtLong count) { stored += count; });
    return stored;
}

/// The elements of an array one after the other, each converted.
template <class Element, class Convert = std::identity>
auto copied(const VtInstanceArray<Element> &array, const Convert &convert = {}) {
    std::vector<std::decay_t<std::invoke_result_t<const Convert &, const Element &>>> result;
    result.reserve(static_cast<std::size_t>(stored_count(array)));
    array.ForEachBlock([&](const Element *elements, VtLong count) {
        for (VtLong i = 0; i < count; ++i)
            result.push_back(convert(elements[i]));
    });
    return result;
}
inline std::vector<Vec3> floats_of(const VtInstanceArray<VtVector3> &array) {
    return copied(array, [](const VtVector3 &v) { return to_float(v); });
}

} // namespace vantor
