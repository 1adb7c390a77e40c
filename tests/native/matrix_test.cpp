// VtMatrix2, VtMatrix3, VtMatrix4.
#include "algebra/vt_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

template <class Matrix> class EachMatrix : public testing::Test {};
using Matrices = testing::Types<VtMatrix2, VtMatrix3, VtMatrix4>;
TYPED_TEST_SUITE(EachMatrix, Matrices);

/// Element (r, c) is 10 r + c.
template <class Matrix> Matrix numbered() {
    Matrix m;
    for (int r = 0; r < Matrix::dimension; ++r)
        for (int c = 0; c < Matrix::dimension; ++c)
            m[r][c] = 10 * r + c;
    return m;
}

TYPED_TEST(EachMatrix, is_zero_when_made_from_nothing) {
    TypeParam m;
    for (int r = 0; r < TypeParam::dimension; ++r)
        for (int c = 0; c < TypeParam::dimension; ++c)
            EXPECT_TRUE(m[r][c] == 0 && !std::signbit(m[r][c]));
}

TEST(Matrix, rows_stand_in_the_order_given) {
    const VtMatrix2 a({1, 2}, {3, 4});
    EXPECT_EQ(a[0][1], 2);
    EXPECT_EQ(a[1][0], 3);

    const VtMatrix3 b({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    const VtMatrix4 c({1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16});
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(b[row][column], 3 * row + column + 1);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(c[row][column], 4 * row + column + 1);
}

TYPED_TEST(EachMatrix, writing_an_element_leaves_its_neighbours) {
    TypeParam m = numbered<TypeParam>();
    m[1][0] = -5;
    for (int r = 0; r < TypeParam::dimension; ++r)
        for (int c = 0; c < TypeParam::dimension; ++c)
            EXPECT_EQ(m[r][c], r == 1 && c == 0 ? -5 : 10 * r + c);
}

TYPED_TEST(EachMatrix, a_row_can_be_assigned) {
    TypeParam m;
    const TypeParam source = numbered<TypeParam>();
    m[0] = source[1];
    for (int c = 0; c < TypeParam::dimension; ++c) {
        EXPECT_EQ(m[0][c], 10 + c);
        EXPECT_EQ(m[1][c], 0);
    }
}

TYPED_TEST(EachMatrix, copies_are_independent) {
    const TypeParam a = numbered<TypeParam>();
    TypeParam b = a;
    b[1][1] = -1;
    EXPECT_EQ(a[1][1], 11);
    EXPECT_EQ(b[0][1], 1);
}

} // namespace
