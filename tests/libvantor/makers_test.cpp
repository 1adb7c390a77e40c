// Dispatch tables: every type of the vocabulary has what makes its entities.
#include "libvantor/description/interface.h"
#include "libvantor/description/interior.h"
#include "libvantor/description/light.h"
#include "libvantor/description/material.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace vantor;

template <class Makers> void expect_one_for_each_type(EntityKind kind, const Makers &makers) {
    std::multiset<std::string_view> types;
    for (const Type &type : names_of(kind).types)
        types.insert(type.name);
    std::multiset<std::string_view> made;
    for (const auto &maker : makers)
        made.insert(maker.type);
    EXPECT_EQ(made, types) << names_of(kind).call;
}

TEST(TypeMakers, AreOneForEachTypeOfTheVocabulary) {
    expect_one_for_each_type(EntityKind::Interface, interface_makers());
    expect_one_for_each_type(EntityKind::Interior, interior_makers());
    expect_one_for_each_type(EntityKind::Light, light_makers());
    expect_one_for_each_type(EntityKind::Material, material_makers());
}

TEST(TypeMakers, AMissingOneIsNamed) {
    try {
        maker_of(interface_makers(), {"velvet", "", {}});
        FAIL() << "no such type is made";
    } catch (const std::logic_error &error) {
        EXPECT_STREQ(error.what(), "nothing makes the type \"velvet\"");
    }
}

} // namespace
