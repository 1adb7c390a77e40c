// Composition and inversion of transforms, as the module does them; the embedded renderer composes the same way.
#pragma once

#include "algebra/vt_transform.h"

/// The matrix product a x b. Entry (i, j) is a(i,0) b(0,j) + a(i,1) b(1,j) + a(i,2) b(2,j) + a(i,3) b(3,j), summed left
/// to right. With points as rows (p' = p M), a acts first.
constexpr VtTransform Compose(const VtTransform &a, const VtTransform &b) {
    VtTransform product;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            product[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j] + a[i][3] * b[3][j];
    return product;
}

/// The inverse by cofactors: the adjugate times 1 / determinant.
///
/// A transform whose determinant is smaller than 1e-6 in magnitude counts as singular, whatever the size of its
/// entries, and gives its adjugate, unscaled. A determinant that is not a number counts as regular and makes every
/// entry NaN.
VtTransform Invert(const VtTransform &a);
