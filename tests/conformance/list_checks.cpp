// Checks of VtArgList.
#include "checks.h"
#include "memory_use.h"
#include "objects.h"

namespace {

void check_order(const Library &library) {
    MadeList list(library);
    for (VtLong i = 0; i < 5000; ++i) {
        list.add(i);
        require(list.count() == i + 1, "it counts " + std::to_string(list.count()) + " after " + std::to_string(i + 1));
    }
    for (VtLong i = 0; i < 5000; ++i) {
        const auto found = value_in<VtLong>(library, list.at(i));
        require(found == i, "value " + std::to_string(i) + " is " + std::to_string(found));
    }
}

void check_copies(const Library &library) {
    MadeList list(library);
    list.add_text("text");
    list.add(sample<VtTransform>());
    list.add_array_of<double>({1, 2}, 3);
    list.add(sample<VtVector3>());
    require(text_in(library, list.at(0)) == "text", "the text has changed");
    require(same_bits(value_in<VtTransform>(library, list.at(1)), sample<VtTransform>()), "the transform has changed");
    const VtInstanceArray<double> &array = array_in<double>(library, list.at(2));
    require(array.Size() == 3 && array.At(2) == GuardedArray<double>({3}, 3).At(2), "the array has changed");
    require(same_bits(value_in<VtVector3>(library, list.at(3)), sample<VtVector3>()), "the vector has changed");
}

void check_texts(const Library &library) {
    std::vector<std::string> texts;
    for (const std::size_t length : {0, 5, 15, 16, 40, 300})
        texts.emplace_back(length, static_cast<char>('a' + texts.size()));
    MadeList list(library);
    for (const std::string &text : texts)
        list.add_text(text);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string found = text_in(library, list.at(static_cast<VtLong>(i)));
        require(found == texts[i], "text " + std::to_string(i) + " of " + std::to_string(texts[i].size()) +
                                       " bytes comes out as \"" + found.substr(0, 40) + "\"");
    }
}

void add_every_kind(MadeList &list) {
    list.add_text("a text of more than fifteen characters");
    for_each_element_type([&]<class Type>(const Type &) {
        list.add(sample<Type>());
        list.add_array_of<Type>({1, 2, 4}, 5);
    });
}

void check_room(const Library &library) {
    MadeList list(library);
    list.surroundings().require_untouched_surroundings("the constructor");
    for (int i = 0; i < 10; ++i) {
        add_every_kind(list);
        list.surroundings().require_untouched_surroundings("Add");
    }
    list.destroy();
    list.surroundings().require_untouched_surroundings("the destructor");
}

// An outer list is begun; a whole creation happens; the outer list goes on.
void check_nesting(const Library &library) {
    MadeList outer(library);
    outer.add_text("outer");
    outer.add(VtLong(1));
    {
        MadeScene scene(library);
        MadeList inner(library);
        inner.add_text("inner");
        inner.add(VtLong(2));
        inner.add(VtLong(3));
        require(inner.count() == 3, "the inner list counts " + std::to_string(inner.count()) + " of 3");
        scene->NewObject("no such type", inner.list());
    }
    require(outer.count() == 2, "the outer list counts " + std::to_string(outer.count()) + " of 2");
    outer.add(VtLong(4));
    require(text_in(library, outer.at(0)) == "outer" && value_in<VtLong>(library, outer.at(1)) == 1 &&
                value_in<VtLong>(library, outer.at(2)) == 4,
            "the outer list has other values");
}

// When the module gives a list up before its creation call, what its values point to may be gone already.
void check_destructor(const Library &library) {
    GuardedText text("a text of more than fifteen characters");
    MadeList list(library);
    const auto add = [&](MadeValue &value) {
        library.function<void(VtArgList &, const VtArgType &)>(symbols::list_add)(list.list(), value.value());
    };
    add(*MadeValue::of(library, text.characters()));

    using Array = GuardedArray<VtVector3>;
    GuardedMemory room(sizeof(Array));
    auto *array = new (room.data()) Array({1, 2, 4}, 7);
    add(*MadeValue::of_array<VtVector3>(library, *array));

    text.seal();
    array->seal();
    room.seal();
    list.destroy();
    room.unseal();
    array->~Array();
}

} // namespace

Group list_checks() {
    return {
        {"VtArgList is empty when made",
         [](const Library &library) {
             MadeList list(library);
             require(list.count() == 0, "it counts " + std::to_string(list.count()));
         }},
        {"VtArgList keeps the values in order", check_order},
        {"VtArgList keeps values whose originals are gone", check_copies},
        {"VtArgList keeps texts apart and whole", check_texts},
        {"VtArgList stays in its room", check_room},
        {"VtArgList outlives a creation that happens while it is filled", check_nesting},
        {"the destructor of VtArgList reads no text and no array", check_destructor},
        {"VtArgList gives its memory back",
         [](const Library &library) {
             require_no_growth([&] {
                 MadeList list(library);
                 add_every_kind(list);
             });
         }},
        {"VtArgType gives its memory back",
         [](const Library &library) {
             GuardedText text("a text of more than fifteen characters");
             const GuardedArray<VtVector3> array({1, 2, 4}, 7);
             require_no_growth([&] {
                 const auto made = MadeValue::of(library, text.characters());
                 const auto copy = MadeValue::copy_of(library, made->value());
                 const auto of_array = MadeValue::of_array<VtVector3>(library, array);
                 const auto transform = MadeValue::of(library, sample<VtTransform>());
             });
         }},
    };
}
