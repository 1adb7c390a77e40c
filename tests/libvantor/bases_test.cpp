// The spline bases against direct evaluation of their curves.
#include "renderer/vt_bases.h"

#include <array>
#include <gtest/gtest.h>

namespace {

using Weights = std::array<double, 4>;

// The weights of the control points at t: (t^3 t^2 t 1) B.
Weights weights(const VtMatrix4 &basis, double t) {
    Weights result{};
    for (int c = 0; c < 4; ++c)
        result[static_cast<std::size_t>(c)] = ((basis[0][c] * t + basis[1][c]) * t + basis[2][c]) * t + basis[3][c];
    return result;
}

void expect_near(const Weights &a, const Weights &b) {
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(a[i], b[i], 1e-15);
}

constexpr double parameters[] = {0, 0.125, 0.25, 0.5, 0.75, 1};

TEST(Bases, BezierIsBernstein) {
    for (const double t : parameters) {
        const double s = 1 - t;
        expect_near(weights(VtBezierBasis(), t), {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t});
    }
}

TEST(Bases, BSplineIsTheUniformCubicOne) {
    // The four pieces of the cubic cardinal B-spline.
    const auto bump = [](double x) {
        x = x < 0 ? -x : x;
        return x < 1 ? 2 / 3.0 - x * x + x * x * x / 2 : x < 2 ? (2 - x) * (2 - x) * (2 - x) / 6 : 0;
    };
    for (const double t : parameters)
        expect_near(weights(VtBSplineBasis(), t), {bump(t + 1), bump(t), bump(t - 1), bump(t - 2)});
}

TEST(Bases, HermiteInterpolatesPointsAndTangents) {
    for (const double t : parameters) {
        const double s = 1 - t;
        expect_near(weights(VtHermiteBasis(), t), {(1 + 2 * t) * s * s, t * s * s, t * t * (3 - 2 * t), -t * t * s});
    }
}

TEST(Bases, CatmullRomIsHermiteWithCentralDifferences) {
    for (const double t : parameters) {
        const Weights h = weights(VtHermiteBasis(), t);
        expect_near(weights(VtCatmullRomBasis(), t), {-h[1] / 2, h[0] - h[3] / 2, h[2] + h[1] / 2, h[3] / 2});
    }
}

TEST(Bases, WeightsOfPointsAddUpToOne) {
    for (const VtMatrix4 &basis : {VtBezierBasis(), VtBSplineBasis(), VtCatmullRomBasis()})
        for (const double t : parameters) {
            const Weights w = weights(basis, t);
            EXPECT_NEAR(w[0] + w[1] + w[2] + w[3], 1, 1e-15);
        }
}

} // namespace
