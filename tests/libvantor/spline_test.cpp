// Splines: points, derivatives and Bezier forms of cubic segments, against the families' own definitions.
#include "libvantor/shapes/spline.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using namespace vantor;

using Control = std::array<VtVector3, 4>;

const Control some_points{VtVector3{0.3, -1.2, 2.5}, VtVector3{1.7, 0.4, -0.6}, VtVector3{-2.1, 3.3, 0.9},
                          VtVector3{4.2, -0.8, 1.1}};

VtVector3 mixed(const VtVector3 &a, const VtVector3 &b, double t) {
    return {a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t, a[2] + (b[2] - a[2]) * t};
}

void expect_near(const VtVector3 &a, const VtVector3 &b, double tolerance) {
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(a[i], b[i], tolerance);
}

// Repeated linear interpolation.
VtVector3 de_casteljau(const Control &p, double t) {
    const VtVector3 a = mixed(p[0], p[1], t), b = mixed(p[1], p[2], t), c = mixed(p[2], p[3], t);
    return mixed(mixed(a, b, t), mixed(b, c, t), t);
}

// The recursion over the knots 0, 1, 2 ..., between the knots 3 and 4.
VtVector3 cox_de_boor(const Control &p, double t) {
    const std::function<double(int, int, double)> base = [&](int i, int degree, double x) -> double {
        if (degree == 0)
            return x >= i && x < i + 1 ? 1 : 0;
        return (x - i) / degree * base(i, degree - 1, x) + (i + degree + 1 - x) / degree * base(i + 1, degree - 1, x);
    };
    VtVector3 sum;
    for (int i = 0; i < 4; ++i)
        for (int c = 0; c < 3; ++c)
            sum[c] += base(i, 3, 3 + t) * p[static_cast<std::size_t>(i)][c];
    return sum;
}

VtVector3 hermite(const Control &p, double t) {
    const double s = 1 - t;
    VtVector3 sum;
    for (int c = 0; c < 3; ++c)
        sum[c] =
            (1 + 2 * t) * s * s * p[0][c] + t * s * s * p[1][c] + t * t * (3 - 2 * t) * p[2][c] - t * t * s * p[3][c];
    return sum;
}

// The pyramid of Barry and Goldman, "A Recursive Evaluation Algorithm for a Class of Catmull-Rom Splines", 1988.
VtVector3 catmull_rom(const Control &p, double t) {
    const auto between = [](const VtVector3 &a, const VtVector3 &b, double from, double to, double x) {
        return mixed(a, b, (x - from) / (to - from));
    };
    const double x = 1 + t; // knots 0, 1, 2, 3
    const VtVector3 a = between(p[0], p[1], 0, 1, x), b = between(p[1], p[2], 1, 2, x),
                    c = between(p[2], p[3], 2, 3, x);
    return between(between(a, b, 0, 2, x), between(b, c, 1, 3, x), 1, 2, x);
}

struct Family {
    const char *name;
    VtMatrix4 basis;
    VtLong step;
    VtVector3 (*definition)(const Control &, double);
};
const Family families[] = {
    {"Bezier", VtBezierBasis(), 3, de_casteljau},
    {"B-spline", VtBSplineBasis(), 1, cox_de_boor},
    {"Catmull-Rom", VtCatmullRomBasis(), 1, catmull_rom},
    {"Hermite", VtHermiteBasis(), 2, hermite},
};

TEST(Spline, PointsAreThoseOfTheDefinition) {
    for (const Family &family : families) {
        SCOPED_TRACE(family.name);
        const Spline spline{family.basis, natural_step(family.basis)};
        EXPECT_EQ(spline.step, family.step);
        for (const double t : {0.0, 0.1, 0.35, 0.5, 0.75, 0.99})
            expect_near(spline.point(some_points, t), family.definition(some_points, t), 1e-14);
    }
}

TEST(Spline, DerivativesAreDifferencesOfPoints) {
    // Central differences are off by h^2 / 6 of the third derivative, which is below 100 here, and by rounding over h.
    constexpr double h = 1e-5;
    for (const Family &family : families) {
        SCOPED_TRACE(family.name);
        const Spline spline{family.basis, family.step};
        for (const double t : {0.1, 0.5, 0.9}) {
            const VtVector3 before = spline.point(some_points, t - h);
            const VtVector3 after = spline.point(some_points, t + h);
            VtVector3 slope;
            for (int c = 0; c < 3; ++c)
                slope[c] = (after[c] - before[c]) / (2 * h);
            expect_near(spline.derivative(some_points, t), slope, 1e-8);
        }
    }
}

TEST(Spline, BezierFormIsTheSameCurve) {
    for (const Family &family : families) {
        SCOPED_TRACE(family.name);
        const Control bezier = Spline{family.basis, family.step}.bezier(some_points);
        for (const double t : {0.0, 0.2, 0.5, 0.8, 0.99})
            expect_near(de_casteljau(bezier, t), family.definition(some_points, t), 1e-14);
    }
    const Control same = Spline().bezier(some_points);
    for (std::size_t i = 0; i < 4; ++i)
        for (int c = 0; c < 3; ++c)
            EXPECT_DOUBLE_EQ(same[i][c], some_points[i][c]);
    // Numbers go the same way: radii along a B-spline that are all alike stay so.
    for (const double radius : Spline{VtBSplineBasis(), 1}.bezier(std::array{0.3, 0.3, 0.3, 0.3}))
        EXPECT_NEAR(radius, 0.3, 1e-15);
}

TEST(Spline, SegmentsComeOutEven) {
    const Spline bezier;
    EXPECT_EQ(bezier.segments_of(3, false), 0u);
    EXPECT_EQ(bezier.segments_of(4, false), 1u);
    EXPECT_EQ(bezier.segments_of(5, false), 0u);
    EXPECT_EQ(bezier.segments_of(10, false), 3u);
    EXPECT_EQ(bezier.segments_of(12, true), 4u);
    EXPECT_EQ(bezier.segments_of(13, true), 0u);
    EXPECT_EQ(bezier.fitting_counts(false), "4, 7, 10 ...");
    EXPECT_EQ(bezier.fitting_counts(true), "3, 6, 9 ...");
    const Spline b_spline{VtBSplineBasis(), 1};
    EXPECT_EQ(b_spline.segments_of(4, false), 1u);
    EXPECT_EQ(b_spline.segments_of(9, false), 6u);
    EXPECT_EQ(b_spline.segments_of(9, true), 9u);
}

} // namespace
