// VtTransform as a value, and what the module does with it: composition and inversion.
#include "algebra/vt_transform_algebra.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

/// Entry (r, c) is what entry(r, c) says.
template <class Entry> VtTransform transform(Entry entry) {
    VtTransform t;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            t[r][c] = entry(r, c);
    return t;
}

VtTransform diagonal(double a, double b, double c, double d) {
    VtTransform t;
    t[0][0] = a;
    t[1][1] = b;
    t[2][2] = c;
    t[3][3] = d;
    return t;
}

const VtTransform identity = diagonal(1, 1, 1, 1);

/// Entries -3 .. 3, so that products, cofactors and determinants are exact.
VtTransform random_integers(std::mt19937 &random) {
    return transform([&](int, int) { return static_cast<double>(random() % 7) - 3; });
}

VtTransform random_reals(std::mt19937 &random) {
    std::uniform_real_distribution<double> entry(-2, 2);
    return transform([&](int, int) { return entry(random); });
}

using Entries = std::array<double, 16>;
Entries entries(const VtTransform &t) { return std::bit_cast<Entries>(t); }

/// The determinant of what remains of an integer transform without row r and column c, by the Leibniz formula.
long long minor_determinant(const VtTransform &t, int r, int c) {
    int rows[3], columns[3];
    for (int i = 0; i < 3; ++i) {
        rows[i] = i < r ? i : i + 1;
        columns[i] = i < c ? i : i + 1;
    }
    const auto at = [&](int i, int j) { return static_cast<long long>(t[rows[i]][columns[j]]); };
    return at(0, 0) * at(1, 1) * at(2, 2) + at(0, 1) * at(1, 2) * at(2, 0) + at(0, 2) * at(1, 0) * at(2, 1) -
           at(0, 2) * at(1, 1) * at(2, 0) - at(0, 1) * at(1, 0) * at(2, 2) - at(0, 0) * at(1, 2) * at(2, 1);
}

/// Entry (j, i) is the cofactor of entry (i, j).
VtTransform adjugate(const VtTransform &t) {
    return transform([&](int j, int i) {
        const auto value = static_cast<double>(minor_determinant(t, i, j));
        return (i + j) % 2 ? -value : value;
    });
}

double determinant(const VtTransform &t) {
    double sum = 0;
    for (int j = 0; j < 4; ++j)
        sum += t[0][j] * static_cast<double>(minor_determinant(t, 0, j)) * (j % 2 ? -1 : 1);
    return sum;
}

TEST(TransformValue, is_all_zeros_and_not_the_identity_when_made_from_nothing) {
    EXPECT_EQ(entries(VtTransform()), Entries{});
}

TEST(TransformValue, as_a_matrix_has_the_same_entries) {
    const VtTransform t = transform([](int r, int c) { return 4 * r + c; });
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(t.Matrix()[r][c], 4 * r + c);
}

TEST(Compose, is_the_matrix_product) {
    const VtTransform a = transform([](int r, int c) { return 4 * r + c + 1; });
    const VtTransform b = transform([](int r, int c) { return r == c ? 2 : r - c; });

    EXPECT_EQ(entries(Compose(a, b)), (Entries{22, 14, 6, -2, 54, 30, 6, -18, 86, 46, 6, -34, 118, 62, 6, -50}));
    EXPECT_EQ(entries(Compose(b, a)),
              (Entries{-60, -64, -68, -72, -24, -24, -24, -24, 12, 16, 20, 24, 48, 56, 64, 72}));
}

TEST(Compose, acts_first_with_the_first_on_points_as_rows) {
    VtTransform translation = identity;
    translation[3] = {1, 2, 3, 1};
    const VtTransform scaling = diagonal(10, 10, 10, 1);

    EXPECT_EQ(entries(Compose(translation, scaling)), (Entries{10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 10, 0, 10, 20, 30, 1}));
    EXPECT_EQ(entries(Compose(scaling, translation)), (Entries{10, 0, 0, 0, 0, 10, 0, 0, 0, 0, 10, 0, 1, 2, 3, 1}));
}

TEST(Compose, with_itself_squares) {
    std::mt19937 random(1);
    VtTransform t = random_integers(random);
    const VtTransform copy = t;
    const VtTransform square = Compose(t, copy);
    t = Compose(t, t);
    EXPECT_EQ(entries(t), entries(square));
}

TEST(Compose, adds_from_the_left) {
    VtTransform row, column;
    row[1] = {1e16, 1, 1, -1e16};
    for (int i = 0; i < 4; ++i)
        column[i][2] = 1;
    EXPECT_EQ(Compose(row, column)[1][2], 0); // ((1e16 + 1) + 1) - 1e16; from the right it would be 2.

    row[1] = {1, 1, 1e16, -1e16};
    EXPECT_EQ(Compose(row, column)[1][2], 2);
}

TEST(Compose, takes_a_nan_and_infinities_as_they_come) {
    VtTransform t = identity;
    t[2][1] = std::numeric_limits<double>::infinity();
    const VtTransform product = Compose(t, identity);
    EXPECT_TRUE(std::isinf(product[2][1]));
    EXPECT_TRUE(std::isnan(product[2][0])); // infinity times 0
    EXPECT_EQ(product[0][0], 1);
}

TEST(Invert, of_the_identity_is_the_identity) {
    const Entries inverse = entries(Invert(identity));
    EXPECT_EQ(inverse, entries(identity));
    EXPECT_TRUE(std::none_of(inverse.begin(), inverse.end(), [](double d) { return std::signbit(d); }));
}

TEST(Invert, of_a_translation_negates_it_on_either_side) {
    VtTransform rows = identity;
    rows[3] = {1, -2, 3, 1};
    EXPECT_EQ(entries(Invert(rows)), (Entries{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, 2, -3, 1}));

    const VtTransform columns = transform([&](int r, int c) { return rows[c][r]; });
    EXPECT_EQ(entries(Invert(columns)), (Entries{1, 0, 0, -1, 0, 1, 0, 2, 0, 0, 1, -3, 0, 0, 0, 1}));
}

TEST(Invert, of_a_diagonal) {
    EXPECT_EQ(entries(Invert(diagonal(2, 4, 8, 16))), entries(diagonal(0.5, 0.25, 0.125, 0.0625)));
}

TEST(Invert, has_the_cofactors_over_the_determinant_in_every_place) {
    std::mt19937 random(2);
    int singular = 0;
    for (int i = 0; i < 2000; ++i) {
        const VtTransform t = random_integers(random);
        const double det = determinant(t);
        const double factor = det == 0 ? 1 : 1.0 / det;
        const VtTransform expected = adjugate(t);
        const VtTransform inverse = Invert(t);
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(inverse[r][c], expected[r][c] * factor);
        singular += det == 0;
    }
    EXPECT_GT(singular, 0);
    EXPECT_LT(singular, 2000);
}

TEST(Invert, times_the_original_is_the_identity) {
    std::mt19937 random(3);
    for (int i = 0; i < 1000; ++i) {
        const VtTransform t = random_reals(random);
        const VtTransform inverse = Invert(t);
        // Rounding errors grow with the entries of the inverse.
        double largest = 1;
        for (double entry : entries(inverse))
            largest = std::max(largest, std::fabs(entry));
        const VtTransform product = Compose(t, inverse);
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(product[r][c], identity[r][c], 1e-12 * largest * largest);
    }
}

TEST(Invert, of_a_singular_transform_is_its_adjugate) {
    EXPECT_EQ(entries(Invert(VtTransform())), Entries{});

    const double cube = 0.01 * 0.01 * 0.01;
    const Entries small = entries(Invert(diagonal(0.01, 0.01, 0.01, 0.01)));
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(small[i], i % 5 ? 0 : cube, 1e-21);
}

TEST(Invert, counts_a_determinant_below_one_millionth_as_singular_in_both_signs) {
    for (double sign : {1.0, -1.0}) {
        EXPECT_EQ(Invert(diagonal(1, 1, 1, sign * 1e-6))[3][3], sign * (1.0 / 1e-6));
        EXPECT_EQ(Invert(diagonal(1, 1, 1, sign * std::nextafter(1e-6, 0)))[3][3], 1);
    }
}

TEST(Invert, with_a_nan_determinant_is_nan_everywhere) {
    VtTransform t = identity;
    t[0][0] = std::numeric_limits<double>::quiet_NaN();
    for (double entry : entries(Invert(t)))
        EXPECT_TRUE(std::isnan(entry));
}

TEST(Invert, leaves_its_argument) {
    std::mt19937 random(4);
    const VtTransform t = random_reals(random);
    const Entries before = entries(t);
    Invert(t);
    EXPECT_EQ(entries(t), before);
}

} // namespace
