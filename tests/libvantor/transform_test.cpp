// The transform operations against the formulas of their header.
#include "algebra/vt_transform.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

namespace {

using Rows = std::array<std::array<double, 4>, 4>;

Rows rows_of(const VtTransform &m) {
    Rows rows;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            rows[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)] = m[r][c];
    return rows;
}

VtTransform filled() {
    VtTransform m;
    for (int r = 0; r < 4; ++r)
        m[r] = {9, 9, 9, 9};
    return m;
}

VtVector3 mapped(const VtVector3 &p, const VtTransform &m) {
    VtVector3 result;
    for (int c = 0; c < 3; ++c)
        result[c] = p[0] * m[0][c] + p[1] * m[1][c] + p[2] * m[2][c] + m[3][c];
    return result;
}

void expect_near(const VtVector3 &a, const VtVector3 &b, double tolerance) {
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(a[i], b[i], tolerance) << "component " << i;
}

// Orthonormal rows and determinant 1.
void expect_rotation(const VtTransform &m) {
    const auto dot = [&](int a, int b) { return m[a][0] * m[b][0] + m[a][1] * m[b][1] + m[a][2] * m[b][2]; };
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b)
            EXPECT_NEAR(dot(a, b), a == b ? 1 : 0, 1e-14);
    const double determinant = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                               m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    EXPECT_NEAR(determinant, 1, 1e-14);
}

TEST(Transform, SimpleOnesReplaceEveryEntry) {
    VtTransform m = filled();
    m.Zero();
    EXPECT_EQ(rows_of(m), Rows{});
    m = filled();
    m.Identity();
    EXPECT_EQ(rows_of(m), (Rows{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}));
    m = filled();
    m.Scaling({2, 3, 4});
    EXPECT_EQ(rows_of(m), (Rows{{{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 4, 0}, {0, 0, 0, 1}}}));
    m = filled();
    m.Translation({2, 3, 4});
    EXPECT_EQ(rows_of(m), (Rows{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {2, 3, 4, 1}}}));
    m = filled();
    m.ReflectionOnXY();
    EXPECT_EQ(rows_of(m), (Rows{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -1, 0}, {0, 0, 0, 1}}}));
}

TEST(Transform, RotationsFollowTheirFormulas) {
    const double c = std::cos(0.3);
    const double s = std::sin(0.3);
    const double degrees = 0.3 * 180 / std::numbers::pi;
    const auto near = [](const VtTransform &m, const Rows &wanted) {
        const Rows rows = rows_of(m);
        for (std::size_t r = 0; r < 4; ++r)
            for (std::size_t k = 0; k < 4; ++k)
                EXPECT_NEAR(rows[r][k], wanted[r][k], 1e-15) << r << " " << k;
    };
    VtTransform m = filled();
    m.RotationAroundX(degrees);
    near(m, {{{1, 0, 0, 0}, {0, c, s, 0}, {0, -s, c, 0}, {0, 0, 0, 1}}});
    m = filled();
    m.RotationAroundY(degrees);
    near(m, {{{c, 0, -s, 0}, {0, 1, 0, 0}, {s, 0, c, 0}, {0, 0, 0, 1}}});
    m = filled();
    m.RotationAroundZ(degrees);
    near(m, {{{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
}

TEST(Transform, QuarterTurnsAreExact) {
    const double cosines[] = {1, 0, -1, 0};
    const double sines[] = {0, 1, 0, -1};
    for (int quarter = -9; quarter <= 9; ++quarter) {
        VtTransform m;
        m.RotationAroundZ(90.0 * quarter);
        const int k = quarter & 3;
        EXPECT_EQ(m[0][0], cosines[k]);
        EXPECT_EQ(m[0][1], sines[k]);
        EXPECT_EQ(m[1][0], -sines[k]);
        EXPECT_EQ(m[1][1], cosines[k]);
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                EXPECT_FALSE(m[r][c] == 0 && std::signbit(m[r][c])) << "negative zero at " << r << " " << c;
    }
}

TEST(Transform, RotationAroundAxisKeepsTheLineAndAgreesWithTheCoordinateAxes) {
    const VtVector3 point(1, 2, 3);
    const VtVector3 direction(1, -2, 0.5);
    VtTransform m = filled();
    m.RotationAroundAxis(point, direction, 77);
    expect_rotation(m);
    expect_near(mapped(point, m), point, 1e-14);
    expect_near(mapped({2, 0, 3.5}, m), {2, 0, 3.5}, 1e-14);

    VtTransform about_z;
    about_z.RotationAroundZ(30);
    m.RotationAroundAxis({0, 0, 5}, {0, 0, 1e-300}, 30);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(m[r][c], about_z[r][c], 1e-15);

    m = filled();
    m.RotationAroundAxis(point, {0, 0, 0}, 30);
    EXPECT_EQ(rows_of(m), (Rows{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}));
}

TEST(Transform, AlignmentTakesOneDirectionToTheOther) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> number(-1, 1);
    for (int i = 0; i < 1000; ++i) {
        const VtVector3 from(number(random), number(random), number(random));
        VtVector3 to(number(random), number(random), number(random));
        // Every fourth pair is nearly opposite, where formulas that divide by 1 + cosine lose their digits.
        if (i % 4 == 0)
            to = {-from[0] + 1e-9 * to[0], -from[1] + 1e-9 * to[1], -from[2] + 1e-9 * to[2]};
        VtTransform m;
        m.AlignmentTo(from, to);
        expect_rotation(m);
        VtVector3 unit_from = from;
        VtVector3 unit_to = to;
        unit_from.Normalize();
        unit_to.Normalize();
        expect_near(mapped(unit_from, m), unit_to, 1e-13);

        m.AlignmentToZ(from);
        expect_rotation(m);
        expect_near(mapped(unit_from, m), {0, 0, 1}, 1e-14);
    }
}

TEST(Transform, AlignmentIsTheShortestRotation) {
    // Shortest: the axis from x to stays where it is.
    VtTransform m;
    m.AlignmentTo({1, 0, 0}, {0, 1, 0});
    expect_near(mapped({0, 0, 1}, m), {0, 0, 1}, 0);
    m.AlignmentToZ({1, 0, 0});
    expect_near(mapped({0, 1, 0}, m), {0, 1, 0}, 0);
}

TEST(Transform, AlignmentOfSpecialDirections) {
    const Rows identity{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
    VtTransform m = filled();
    m.AlignmentToZ({0, 0, 0});
    EXPECT_EQ(rows_of(m), identity);
    m = filled();
    m.AlignmentTo({1, 2, 3}, {0, 0, 0});
    EXPECT_EQ(rows_of(m), identity);
    m = filled();
    m.AlignmentTo({1, 2, 3}, {2, 4, 6});
    EXPECT_EQ(rows_of(m), identity);

    m.AlignmentToZ({0, 0, -2});
    expect_near(mapped({1, 0, 0}, m), {1, 0, 0}, 0);
    expect_near(mapped({0, 1, 0}, m), {0, -1, 0}, 0);
    expect_near(mapped({0, 0, 1}, m), {0, 0, -1}, 0);

    m.AlignmentTo({1, 2, 3}, {-1, -2, -3});
    expect_rotation(m);
    expect_near(mapped({1, 2, 3}, m), {-1, -2, -3}, 1e-14);

    m.AlignmentTo({1e300, 0, 0}, {0, 1e-300, 0});
    expect_near(mapped({1, 0, 0}, m), {0, 1, 0}, 0);
}

} // namespace
