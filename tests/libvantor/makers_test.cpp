// Dispatch tables: every type of the vocabulary has what makes its entities.
#include "libvantor/description/camera.h"
#include "libvantor/description/imager.h"
#include "libvantor/description/interface.h"
#include "libvantor/description/interior.h"
#include "libvantor/description/light.h"
#include "libvantor/description/material.h"
#include "libvantor/description/object.h"
#include "libvantor/description/pattern.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace vantor;

// The types made otherwise have no row.
template <class Makers> void expect_one_for_each_type(EntityKind kind, const Makers &makers,
                                                      std::initializer_list<std::string_view> made_otherwise = {}) {
    std::multiset<std::string_view> types;
    for (const Type &type : names_of(kind).types)
        types.insert(type.name);
    std::multiset<std::string_view> made(made_otherwise);
    for (const auto &maker : makers)
        made.insert(maker.type);
    EXPECT_EQ(made, types) << names_of(kind).call;
}

TEST(TypeMakers, AreOneForEachTypeOfTheVocabulary) {
    expect_one_for_each_type(EntityKind::Camera, camera_makers());
    expect_one_for_each_type(EntityKind::Imager, imager_makers());
    expect_one_for_each_type(EntityKind::Interface, interface_makers());
    expect_one_for_each_type(EntityKind::Interior, interior_makers());
    expect_one_for_each_type(EntityKind::Light, light_makers());
    expect_one_for_each_type(EntityKind::Material, material_makers());
    expect_one_for_each_type(EntityKind::Object, shape_makers(), {instances_type});
    expect_one_for_each_type(EntityKind::Pattern, pattern_makers());
    expect_one_for_each_type(EntityKind::Trimmer, trimmer_makers());
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
