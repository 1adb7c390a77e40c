// What the module itself does with transforms: composition and inversion.
#pragma once

#include "algebra/vt_transform.h"

/// The matrix product a x b. Entry (i, j) is a(i,0) b(0,j) + a(i,1) b(1,j) + a(i,2) b(2,j) + a(i,3) b(3,j), summed left
/// to right. With points as rows (p' = p M), a acts first.
VtTransform Compose(const VtTransform &a, const VtTransform &b);

/// The inverse by cofactors: the adjugate times 1 / determinant.
///
/// A transform whose determinant is smaller than 1e-6 in magnitude counts as singular, whatever the size of its
/// entries, and gives its adjugate, unscaled. A determinant that is not a number counts as regular and makes every
/// entry NaN.
VtTransform Invert(const VtTransform &a);
