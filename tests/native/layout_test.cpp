// What module and renderer library must agree on, byte by byte: compiling this file is most of the check.
#include "arrays/vt_instance_array.h"
#include "renderer/vt_arg_list.h"
#include "renderer/vt_bases.h"
#include "renderer/vt_local_scene_proxy.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>

namespace {

static_assert(sizeof(VtLong) == 4 && std::is_signed_v<VtLong>);
static_assert(sizeof(void *) == 8 && sizeof(double) == 8);

// Values: doubles and nothing else, aligned as doubles.

template <class Value, int doubles>
constexpr bool is_plain = sizeof(Value) == doubles * sizeof(double) && alignof(Value) == alignof(double) &&
                          std::is_trivially_copyable_v<Value> &&std::is_trivially_destructible_v<Value>
                              &&std::is_standard_layout_v<Value> &&std::is_nothrow_default_constructible_v<Value>;

static_assert(is_plain<VtVector2, 2>);
static_assert(is_plain<VtVector3, 3>);
static_assert(is_plain<VtVector4, 4>);
static_assert(is_plain<VtMatrix2, 4>);
static_assert(is_plain<VtMatrix3, 9>);
static_assert(is_plain<VtMatrix4, 16>);
static_assert(is_plain<VtTransform, 16>);

// A class with such members is trivially copyable in its turn, so that it may be an array's element.
struct Compound {
    VtLong number;
    VtVector3 vector;
    VtMatrix2 matrix;
    VtTransform transform;
};
static_assert(std::is_trivially_copyable_v<Compound>);
static_assert(offsetof(Compound, vector) == 8 && offsetof(Compound, matrix) == 32 &&
              offsetof(Compound, transform) == 64);
static_assert(sizeof(Compound) == 192);

// The order of a value's doubles.
static_assert(std::bit_cast<std::array<double, 3>>(VtVector3(1, 2, 3)) == std::array<double, 3>{1, 2, 3});
static_assert(std::bit_cast<std::array<double, 4>>(VtMatrix2({1, 2}, {3, 4})) == std::array<double, 4>{1, 2, 3, 4});
static_assert(std::bit_cast<std::array<double, 9>>(VtMatrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9})) ==
              std::array<double, 9>{1, 2, 3, 4, 5, 6, 7, 8, 9});

// Blocks.

static_assert(offsetof(VtArrayBlock<double>, count) == 0);
static_assert(offsetof(VtArrayBlock<double>, data) == 8);
static_assert(offsetof(VtArrayBlock<double>, next) == 16);
static_assert(sizeof(VtArrayBlock<VtTransform>) == 24);

// Containers: the same three fields whatever the element. The fields are protected; a derived class may name them.

template <class T> struct Fields : VtInstanceArray<T> {
    static constexpr bool as_agreed() {
        return offsetof(Fields, size) == 0 && offsetof(Fields, blockSize) == 4 && offsetof(Fields, first) == 8 &&
               sizeof(Fields) == 16 && sizeof(VtInstanceArray<T>) == 16;
    }
};
static_assert(Fields<VtLong>::as_agreed());
static_assert(Fields<double>::as_agreed());
static_assert(Fields<VtVector2>::as_agreed());
static_assert(Fields<VtVector3>::as_agreed());
static_assert(Fields<VtVector4>::as_agreed());
static_assert(Fields<VtMatrix2>::as_agreed());
static_assert(Fields<VtMatrix3>::as_agreed());
static_assert(Fields<VtMatrix4>::as_agreed());
static_assert(Fields<VtTransform>::as_agreed());
static_assert(!std::is_copy_constructible_v<VtInstanceArray<double>> &&
              !std::is_copy_assignable_v<VtInstanceArray<double>>);

// Parameters and proxy: a fixed room, whatever a library keeps in it.

static_assert(sizeof(VtArgType) == 136 && alignof(VtArgType) == 8);
static_assert(sizeof(VtArgList) == 32 && alignof(VtArgList) == 8);
static_assert(sizeof(VtLocalSceneProxy) == 16 && alignof(VtLocalSceneProxy) == 8);
static_assert(std::has_virtual_destructor_v<VtLocalSceneProxy>);
static_assert(sizeof(VtArgTag) == sizeof(VtLong));
static_assert(static_cast<int>(VtArgTag::Long) == 1 && static_cast<int>(VtArgTag::Text) == 3 &&
              static_cast<int>(VtArgTag::Transform) == 10 && static_cast<int>(VtArgTag::TransformArray) == 19);

TEST(Layout, a_matrix_lies_row_after_row_in_memory) {
    VtTransform transform;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            transform[r][c] = 4 * r + c;

    const auto entries = std::bit_cast<std::array<double, 16>>(transform);

    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(entries[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(static_cast<const void *>(&transform.Matrix()), static_cast<const void *>(&transform));
}

} // namespace
