// Checks of VtArgType.
#include "checks.h"
#include "objects.h"

#include <limits>

namespace {

using Made = std::unique_ptr<MadeValue>;

// Runs check on the value, and on a copy of it whose original is gone.
template <class Check> void with_value_and_copy(const Library &library, Made made, Check check) {
    check(made->value());
    const Made copy = MadeValue::copy_of(library, made->value());
    made.reset();
    check(copy->value());
}

template <class Value> std::vector<Value> samples() { return {sample<Value>()}; }
template <> std::vector<VtLong> samples() {
    using Limits = std::numeric_limits<VtLong>;
    return {0, 1, -1, Limits::max(), Limits::min()};
}
template <> std::vector<double> samples() {
    using Limits = std::numeric_limits<double>;
    return {0.0, -0.0, 0.1, Limits::infinity(), Limits::quiet_NaN(), Limits::denorm_min()};
}

void check_tag(const Library &library, const Kind &kind, const VtArgType &value) {
    const VtArgTag found = tag_of(library, value);
    require(found == kind.tag, "its tag is " + std::to_string(static_cast<VtLong>(found)) + ", expected " +
                                   std::to_string(static_cast<VtLong>(kind.tag)));
}

// For what is passed by value: the same bits come out.
template <class Value> void check_value(const Library &library) {
    for (const Value &given : samples<Value>())
        with_value_and_copy(library, MadeValue::of(library, given), [&](const VtArgType &value) {
            check_tag(library, value_kind<Value>(), value);
            require(same_bits(value_in<Value>(library, value), given), "another value comes out");
        });
}

void check_text(const Library &library, const std::string &text) {
    const GuardedText given(text);
    with_value_and_copy(library, MadeValue::of(library, given.characters()), [&](const VtArgType &value) {
        check_tag(library, text_kind(), value);
        const std::string found = text_in(library, value);
        require(found == text, "a text of " + std::to_string(text.size()) + " bytes comes out as another one of " +
                                   std::to_string(found.size()));
    });
}

// What comes out reads as what went in. Whether it is the same container is the library's business.
template <class Element>
void check_array(const Library &library, const VtInstanceArray<Element> &given, bool has_all_its_elements = true) {
    with_value_and_copy(library, MadeValue::of_array(library, given), [&](const VtArgType &value) {
        check_tag(library, array_kind<Element>(), value);
        const VtInstanceArray<Element> &found = array_in<Element>(library, value);
        require(!has_all_its_elements || found.Size() == given.Size(),
                "a size of " + std::to_string(given.Size()) + " comes out as " + std::to_string(found.Size()));
        VtLong i = 0;
        given.ForEachBlock([&](const Element *elements, VtLong count) {
            for (VtLong j = 0; j < count; ++j, ++i)
                require(same_bits(found.At(i), elements[j]), "element " + std::to_string(i) + " of " +
                                                                 std::to_string(given.Size()) +
                                                                 " comes out as another one");
        });
    });
}

template <class Element> void add_checks(Group &group) {
    const std::string name = value_kind<Element>().name;
    group.push_back({"VtArgType(" + name + ") holds what it was given", check_value<Element>});

    const std::string array = "VtArgType(" + array_kind<Element>().name + ") ";
    group.push_back({array + "reads as the array it was given", [](const Library &library) {
                         check_array<Element>(library, GuardedArray<Element>({}, 0));
                         check_array<Element>(library, GuardedArray<Element>({1}, 1));
                         check_array<Element>(library, GuardedArray<Element>({7}, 5));
                     }});
    group.push_back({array + "reads an array of several blocks", [](const Library &library) {
                         check_array<Element>(library, GuardedArray<Element>({1, 2, 4, 8}, 11));
                     }});
    group.push_back({array + "reads an array of negative size", [](const Library &library) {
                         check_array<Element>(library, GuardedArray<Element>({}, -1));
                         check_array<Element>(library, GuardedArray<Element>({3}, -5));
                     }});
    group.push_back({array + "reads an array with fewer elements than its size", [](const Library &library) {
                         check_array<Element>(library, GuardedArray<Element>({1, 2}, 1000), false);
                         check_array<Element>(library, GuardedArray<Element>({}, 1000), false);
                     }});
}

// Every kind in turn; the room of each value is looked at while it lives and when it is gone.
void check_rooms(const Library &library) {
    const auto check = [&](const Kind &kind, const Made &made) {
        const std::string name = "VtArgType(" + kind.name + ")";
        const Made copy = MadeValue::copy_of(library, made->value());
        made->surroundings().require_untouched_surroundings(name);
        copy->surroundings().require_untouched_surroundings("the copy of " + name);
        copy->destroy();
        made->destroy();
        made->surroundings().require_untouched_surroundings("the destructor of " + name);
        copy->surroundings().require_untouched_surroundings("the destructor of the copy of " + name);
    };
    const GuardedText text("a text of more than fifteen characters");
    check(text_kind(), MadeValue::of(library, text.characters()));
    for_each_element_type([&]<class Type>(const Type &) {
        check(value_kind<Type>(), MadeValue::of(library, sample<Type>()));
        const GuardedArray<Type> array({1, 2, 4}, 5);
        check(array_kind<Type>(), MadeValue::of_array<Type>(library, array));
    });
}

} // namespace

Group value_checks() {
    Group group;
    group.push_back({"VtArgType(Text) holds what it was given", [](const Library &library) {
                         for (const char *text : {"", "radius", "gr\xc3\xb6\xc3\x9f\xc3\xa9r"})
                             check_text(library, text);
                     }});
    group.push_back({"VtArgType(Text) holds a text of any length", [](const Library &library) {
                         for (const std::size_t length : {1, 14, 15, 16, 17, 31, 32, 33, 127, 128, 1000, 100000})
                             check_text(library, std::string(length, 'x'));
                     }});
    group.push_back({"VtArgType(Text) holds one text while another holds another", [](const Library &library) {
                         const GuardedText first("first");
                         const GuardedText second("the second text");
                         const Made one = MadeValue::of(library, first.characters());
                         const Made other = MadeValue::of(library, second.characters());
                         require(text_in(library, one->value()) == "first" &&
                                     text_in(library, other->value()) == "the second text",
                                 "the first text comes out as \"" + text_in(library, one->value()) + "\"");
                     }});
    for_each_element_type([&]<class Type>(const Type &) { add_checks<Type>(group); });
    group.push_back({"VtArgType stays in its room", check_rooms});
    return group;
}
