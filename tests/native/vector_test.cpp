// VtVector2, VtVector3, VtVector4.
#include "algebra/vt_vector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

template <class Vector> class EachVector : public testing::Test {};
using Vectors = testing::Types<VtVector2, VtVector3, VtVector4>;
TYPED_TEST_SUITE(EachVector, Vectors);

/// A vector with the first components given and zeros behind.
template <class Vector> Vector vector(double x, double y = 0) {
    Vector v;
    v[0] = x;
    v[1] = y;
    return v;
}

TEST(Vector, components_stand_in_the_order_given) {
    const VtVector2 a(1, 2);
    EXPECT_TRUE(a[0] == 1 && a[1] == 2);
    const VtVector3 b(1, 2, 3);
    EXPECT_TRUE(b[0] == 1 && b[1] == 2 && b[2] == 3);
    const VtVector4 c(1, 2, 3, 4);
    EXPECT_TRUE(c[0] == 1 && c[1] == 2 && c[2] == 3 && c[3] == 4);
}

TYPED_TEST(EachVector, is_zero_when_made_from_nothing) {
    TypeParam v;
    for (int i = 0; i < TypeParam::dimension; ++i)
        EXPECT_TRUE(v[i] == 0 && !std::signbit(v[i]));
}

TYPED_TEST(EachVector, writing_a_component_leaves_its_neighbours) {
    for (int written = 0; written < TypeParam::dimension; ++written) {
        TypeParam v;
        v[written] = 7;
        for (int i = 0; i < TypeParam::dimension; ++i)
            EXPECT_EQ(v[i], i == written ? 7 : 0);
    }
}

TYPED_TEST(EachVector, copies_are_independent) {
    TypeParam a = vector<TypeParam>(1, 2);
    TypeParam b = a;
    b[0] = 9;
    EXPECT_EQ(a[0], 1);
    EXPECT_EQ(b[1], 2);
}

TEST(Vector, lengths) {
    EXPECT_EQ(VtVector2(3, 4).Length(), 5);
    EXPECT_EQ(VtVector2(3, 4).SqLength(), 25);
    EXPECT_EQ(VtVector3(1, 2, 2).Length(), 3);
    EXPECT_EQ(VtVector3(1, 2, 2).SqLength(), 9);
    EXPECT_EQ(VtVector4(1, 1, 1, 1).Length(), 2);
    EXPECT_EQ(VtVector4(1, 1, 1, 1).SqLength(), 4);
}

TEST(Vector, squares_are_added_from_the_left) {
    // 1 vanishes beside 1e16, where doubles are 2 apart; 1 + 1 would not.
    EXPECT_EQ(VtVector3(1e8, 1, 1).SqLength(), 1e16);
    EXPECT_EQ(VtVector3(1, 1, 1e8).SqLength(), 1e16 + 2);
    EXPECT_EQ(VtVector4(1e8, 1, 1, 1).SqLength(), 1e16);
    // The last 1 makes a tie, rounded to the even 1e16 + 4.
    EXPECT_EQ(VtVector4(1, 1, 1e8, 1).SqLength(), 1e16 + 4);
}

TEST(Vector, every_square_is_rounded_before_it_is_added) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> component(-2, 2);
    for (int i = 0; i < 1000; ++i) {
        const VtVector4 v(component(random), component(random), component(random), component(random));
        double sum = 0;
        for (int c = 0; c < 4; ++c) {
            // What is volatile cannot be contracted.
            volatile double square = v[c] * v[c];
            sum += square;
        }
        ASSERT_EQ(v.SqLength(), sum);
        ASSERT_EQ(v.Length(), std::sqrt(sum));
    }
}

TEST(Vector, normalize_scales_to_unit_length) {
    VtVector2 a(3, 4);
    a.Normalize();
    EXPECT_EQ(a[0], 3 * (1.0 / 5));
    EXPECT_EQ(a[1], 4 * (1.0 / 5));

    VtVector3 b(0, 0, 2);
    b.Normalize();
    EXPECT_TRUE(b[0] == 0 && b[1] == 0 && b[2] == 1);

    VtVector4 c(2, 0, 0, 0);
    c.Normalize();
    EXPECT_TRUE(c[0] == 1 && c[1] == 0 && c[2] == 0 && c[3] == 0);
}

TYPED_TEST(EachVector, normalize_multiplies_by_the_reciprocal_and_does_not_divide) {
    // Both quotients by sqrt(149) differ from the products in their last bit.
    const double factor = 1.0 / std::sqrt(149.0);
    ASSERT_NE(7 * factor, 7 / std::sqrt(149.0));
    ASSERT_NE(10 * factor, 10 / std::sqrt(149.0));

    TypeParam v = vector<TypeParam>(7, 10);
    v.Normalize();

    EXPECT_EQ(v[0], 7 * factor);
    EXPECT_EQ(v[1], 10 * factor);
}

TYPED_TEST(EachVector, normalize_leaves_a_vector_of_length_zero) {
    TypeParam zero;
    zero.Normalize();
    EXPECT_EQ(zero[0], 0);

    TypeParam negative_zero = vector<TypeParam>(-0.0);
    negative_zero.Normalize();
    EXPECT_TRUE(std::signbit(negative_zero[0]));

    // Its square underflows to zero.
    TypeParam tiny = vector<TypeParam>(1e-200);
    EXPECT_EQ(tiny.SqLength(), 0);
    EXPECT_EQ(tiny.Length(), 0);
    tiny.Normalize();
    EXPECT_EQ(tiny[0], 1e-200);
}

TYPED_TEST(EachVector, normalize_scales_whatever_is_not_exactly_zero) {
    // The smallest squared length that is not zero.
    TypeParam v = vector<TypeParam>(std::ldexp(1.0, -537));
    ASSERT_EQ(v.SqLength(), std::numeric_limits<double>::denorm_min());
    v.Normalize();
    EXPECT_EQ(v[0], 1);
}

TYPED_TEST(EachVector, normalize_with_a_nan_makes_every_component_nan) {
    for (int at = 0; at < TypeParam::dimension; ++at) {
        TypeParam v = vector<TypeParam>(1, 2);
        v[at] = nan;
        v.Normalize();
        for (int i = 0; i < TypeParam::dimension; ++i)
            EXPECT_TRUE(std::isnan(v[i]));
    }
}

TYPED_TEST(EachVector, normalize_with_an_infinity_multiplies_by_zero) {
    TypeParam v = vector<TypeParam>(-2, infinity);
    v.Normalize();
    EXPECT_TRUE(v[0] == 0 && std::signbit(v[0]));
    EXPECT_TRUE(std::isnan(v[1]));
}

} // namespace
