// VtVector2, VtVector3, VtVector4: vectors of 2, 3 and 4 doubles, as scripts and the renderer exchange them.
#pragma once

#include <cmath>
#include <type_traits>

/// N doubles, contiguous, in component order, and nothing else: no base class, no virtual operation, no heap storage.
///
/// Any double may stand in any component, NaN and infinities included. A default-constructed vector is all zeros.
/// Nothing here checks an index; callers have checked it, or it is a constant.
///
/// Results are bit-identical on every machine: sums are accumulated in component order, without fused multiply-add
/// (compile with -ffp-contract=off) and without reassociation.
template <int N> class VtVector {
  public:
    /// The number of components.
    static constexpr int dimension = N;

    constexpr VtVector() = default;

    // One constructor for each dimension, so that a wrong number of components does not compile.
    constexpr VtVector(double x, double y) requires(N == 2) : component{x, y} {}
    constexpr VtVector(double x, double y, double z) requires(N == 3) : component{x, y, z} {}
    constexpr VtVector(double x, double y, double z, double w) requires(N == 4) : component{x, y, z, w} {}

    /// Component i, 0 <= i < N.
    constexpr double &operator[](int i) { return component[i]; }
    constexpr double operator[](int i) const { return component[i]; }

    /// The sum of the squared components: ((c0 c0 + c1 c1) + c2 c2) + c3 c3.
    constexpr double SqLength() const {
        double sum = component[0] * component[0];
        for (int i = 1; i < N; ++i)
            sum += component[i] * component[i];
        return sum;
    }

    /// The square root of SqLength().
    double Length() const { return std::sqrt(SqLength()); }

    /// Scales the vector to unit length, in place: every component is multiplied by 1 / Length().
    ///
    /// Only a length of exactly zero leaves the vector as it is; so does one whose squares underflow to zero, such as
    /// (1e-200, 0). A NaN component makes every component NaN; an infinite one gives the factor 0. The length is zero
    /// exactly when the squared length is (the square root of the smallest double is 1e-162), so that one test serves
    /// all three dimensions.
    void Normalize() {
        const double length = Length();
        if (length == 0.0)
            return;

        const double factor = 1.0 / length;
        for (double &c : component)
            c *= factor;
    }

  private:
    double component[N] = {};
};

using VtVector2 = VtVector<2>;
using VtVector3 = VtVector<3>;
using VtVector4 = VtVector<4>;

// Module and library are built apart and must agree on every byte.
static_assert(sizeof(VtVector2) == 2 * sizeof(double) && std::is_standard_layout_v<VtVector2>);
static_assert(sizeof(VtVector3) == 3 * sizeof(double) && std::is_standard_layout_v<VtVector3>);
static_assert(sizeof(VtVector4) == 4 * sizeof(double) && std::is_standard_layout_v<VtVector4>);
static_assert(std::is_trivially_copyable_v<VtVector3>);
