// Spline: families of cubic curves, each by its basis matrix and its step.
#pragma once

#include "libvantor/parameters/reader.h"
#include "renderer/vt_bases.h"

#include <array>
#include <cmath>

namespace vantor {

/// The weight of each of a segment's four control points.
using CubicWeights = std::array<double, 4>;

/// The sum of four points or numbers, each times its weight.
template <int N> VtVector<N> weighted_sum(const CubicWeights &weights, const std::array<VtVector<N>, 4> &points) {
    VtVector<N> sum;
    for (int c = 0; c < N; ++c)
        for (std::size_t i = 0; i < 4; ++i)
            sum[c] += weights[i] * points[i][c];
    return sum;
}
inline double weighted_sum(const CubicWeights &weights, const std::array<double, 4> &numbers) {
    double sum = 0;
    for (std::size_t i = 0; i < 4; ++i)
        sum += weights[i] * numbers[i];
    return sum;
}

/// A segment with control points P0..P3 is, as renderer/vt_bases.h has it,
///
///     p(t) = (t^3  t^2  t  1) B (P0 P1 P2 P3)^T,   0 <= t <= 1,
///
/// so that row 0 of the basis B holds the coefficients of t^3. The next segment begins `step` control points further.
/// A Point is a VtVector of any dimension, or a double.
struct Spline {
    VtMatrix4 basis = VtBezierBasis();
    VtLong step = 3;

    /// Of a point at t.
    CubicWeights weights(double t) const {
        CubicWeights result;
        for (int c = 0; c < 4; ++c)
            result[static_cast<std::size_t>(c)] = ((basis[0][c] * t + basis[1][c]) * t + basis[2][c]) * t + basis[3][c];
        return result;
    }

    /// Of the derivative by t at t.
    CubicWeights slopes(double t) const {
        CubicWeights result;
        for (int c = 0; c < 4; ++c)
            result[static_cast<std::size_t>(c)] = (3 * basis[0][c] * t + 2 * basis[1][c]) * t + basis[2][c];
        return result;
    }

    template <class Point> Point point(const std::array<Point, 4> &control, double t) const {
        return weighted_sum(weights(t), control);
    }
    template <class Point> Point derivative(const std::array<Point, 4> &control, double t) const {
        return weighted_sum(slopes(t), control);
    }

    /// The Bezier control points of the same segment. From its polynomial a t^3 + b t^2 + c t + d they are d, d + c/3,
    /// d + 2c/3 + b/3 and a + b + c + d (Bartels, Beatty, Barsky, "An Introduction to Splines", 1987, chapter 10).
    template <class Point> std::array<Point, 4> bezier(const std::array<Point, 4> &control) const {
        std::array<CubicWeights, 4> rows{};
        for (int c = 0; c < 4; ++c) {
            const auto i = static_cast<std::size_t>(c);
            const double cubic = basis[0][c], square = basis[1][c], linear = basis[2][c], constant = basis[3][c];
            rows[0][i] = constant;
            rows[1][i] = constant + linear / 3;
            rows[2][i] = constant + (2 * linear + square) / 3;
            rows[3][i] = ((cubic + square) + linear) + constant;
        }
        return {weighted_sum(rows[0], control), weighted_sum(rows[1], control), weighted_sum(rows[2], control),
                weighted_sum(rows[3], control)};
    }

    /// The Bezier control points of the two halves of a segment that is given by its own (de Casteljau's algorithm).
    template <class Point> static std::array<std::array<Point, 4>, 2> halves(const std::array<Point, 4> &bezier) {
        const auto at = [&](const CubicWeights &weights) { return weighted_sum(weights, bezier); };
        const Point middle = at({0.125, 0.375, 0.375, 0.125});
        return {{{bezier[0], at({0.5, 0.5, 0, 0}), at({0.25, 0.5, 0.25, 0}), middle},
                 {middle, at({0, 0.25, 0.5, 0.25}), at({0, 0, 0.5, 0.5}), bezier[3]}}};
    }

    /// How many segments so many control points make; 0 if they do not come out even. A closed spline goes on from the
    /// last point to the first.
    std::size_t segments_of(std::size_t points, bool is_closed) const {
        const auto advance = static_cast<std::size_t>(step);
        if (is_closed)
            return points % advance == 0 ? points / advance : 0;
        return points >= 4 && (points - 4) % advance == 0 ? (points - 4) / advance + 1 : 0;
    }

    /// Which numbers of control points come out even: "4, 7, 10 ...".
    std::string fitting_counts(bool is_closed) const {
        const VtLong first = is_closed ? step : 4;
        return joined({std::to_string(first), ", ", std::to_string(first + step), ", ",
                       std::to_string(first + 2 * step), " ..."});
    }
};

/// The step that goes with a basis: the module's own for its four families, else 3.
inline VtLong natural_step(const VtMatrix4 &basis) {
    const auto is_basis = [&](const VtMatrix4 &known) {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                if (!(std::fabs(basis[r][c] - known[r][c]) <= 1e-12))
                    return false;
        return true;
    };
    if (is_basis(VtBSplineBasis()) || is_basis(VtCatmullRomBasis()))
        return 1;
    return is_basis(VtHermiteBasis()) ? 2 : 3;
}

/// The matrix4 that is given under that name. Left out, the fallback; so it is after a report if it is unusable.
inline VtMatrix4 basis_of(const Parameters &parameters, std::string_view name, const VtMatrix4 &fallback,
                          const CallReport &report) {
    if (!parameters.is_given(name))
        return fallback;
    const VtMatrix4 &basis = parameters.matrix4(name);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            if (!(std::fabs(basis[r][c]) <= 1e9)) {
                parameters.complain(name, "has unusable elements (expected finite numbers up to 1e9); it is left out",
                                    report);
                return fallback;
            }
    return basis;
}

/// The parameters "basis", a matrix4, and "step", an integer. Left out, the basis is the fallback, and the step its
/// natural one.
inline Spline make_spline(const Parameters &parameters, const VtMatrix4 &fallback, const CallReport &report) {
    const VtMatrix4 basis = basis_of(parameters, "basis", fallback, report);
    return {basis, parameters.is_given("step") ? parameters.integer("step") : natural_step(basis)};
}

} // namespace vantor
