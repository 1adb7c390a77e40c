// The basis matrices of the four cubic spline families. Row 0 holds the coefficients of t^3.
#include "renderer/vt_bases.h"

VtMatrix4 VtBezierBasis() { return {{-1, 3, -3, 1}, {3, -6, 3, 0}, {-3, 3, 0, 0}, {1, 0, 0, 0}}; }

VtMatrix4 VtBSplineBasis() {
    constexpr double s = 1.0 / 6.0;
    return {{-s, 3 * s, -3 * s, s}, {3 * s, -1, 3 * s, 0}, {-3 * s, 0, 3 * s, 0}, {s, 4 * s, s, 0}};
}

VtMatrix4 VtCatmullRomBasis() { return {{-0.5, 1.5, -1.5, 0.5}, {1, -2.5, 2, -0.5}, {-0.5, 0, 0.5, 0}, {0, 1, 0, 0}}; }

VtMatrix4 VtHermiteBasis() { return {{2, 1, -2, 1}, {-3, -2, 3, -1}, {0, 1, 0, 0}, {1, 0, 0, 0}}; }
