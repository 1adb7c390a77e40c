// The basis matrices of the four cubic spline families.
#pragma once

#include "algebra/vt_base.h"
#include "algebra/vt_matrix.h"

// Each is a free function of the library that returns the family's basis by value. The convention is agreed between the
// library and itself, since a script gets the matrix from here and gives it back as a parameter: in the libVantor that
// ships with the module, a segment with control points P0..P3 (as rows) is
//
//     p(t) = (t^3  t^2  t  1) B (P0 P1 P2 P3)^T,   0 <= t <= 1
//
// so that row 0 of B holds the coefficients of t^3. A Hermite segment takes P0 = start, P1 = tangent there, P2 = end,
// P3 = tangent there. The number of control points by which one segment advances to the next is fixed by the module:
// Bezier 3, B-spline 1, Catmull-Rom 1, Hermite 2.
//
// The module keeps no copy: each call of a script's basis function is a call here. The answer is always the same.

VT_API VtMatrix4 VtBezierBasis();
VT_API VtMatrix4 VtBSplineBasis();
/// Tension 1/2.
VT_API VtMatrix4 VtCatmullRomBasis();
VT_API VtMatrix4 VtHermiteBasis();
