// Inversion of transforms, as the module does it.
#include "algebra/vt_transform_algebra.h"

#include <cmath>

namespace {

// The 2x2 determinants of two rows, one for each pair of columns.
struct Minors {
    double m01, m02, m03, m12, m13, m23;

    Minors(const VtVector4 &a, const VtVector4 &b)
        : m01(a[0] * b[1] - a[1] * b[0]), m02(a[0] * b[2] - a[2] * b[0]), m03(a[0] * b[3] - a[3] * b[0]),
          m12(a[1] * b[2] - a[2] * b[1]), m13(a[1] * b[3] - a[3] * b[1]), m23(a[2] * b[3] - a[3] * b[2]) {}
};

// One column of the adjugate: the 3x3 determinants of a row and of two more rows, given by their minors, expanded along
// the first. Signs alternate, in a column from plus or from minus. No sign is put before a sum, so that zeros stay
// positive.
void set_column_from_plus(VtTransform &adjugate, int column, const VtVector4 &row, const Minors &m) {
    adjugate[0][column] = row[1] * m.m23 - row[2] * m.m13 + row[3] * m.m12;
    adjugate[1][column] = row[2] * m.m03 - row[0] * m.m23 - row[3] * m.m02;
    adjugate[2][column] = row[0] * m.m13 - row[1] * m.m03 + row[3] * m.m01;
    adjugate[3][column] = row[1] * m.m02 - row[0] * m.m12 - row[2] * m.m01;
}
void set_column_from_minus(VtTransform &adjugate, int column, const VtVector4 &row, const Minors &m) {
    adjugate[0][column] = row[2] * m.m13 - row[1] * m.m23 - row[3] * m.m12;
    adjugate[1][column] = row[0] * m.m23 - row[2] * m.m03 + row[3] * m.m02;
    adjugate[2][column] = row[1] * m.m03 - row[0] * m.m13 - row[3] * m.m01;
    adjugate[3][column] = row[0] * m.m12 - row[1] * m.m02 + row[2] * m.m01;
}

} // namespace

VtTransform Invert(const VtTransform &a) {
    constexpr double singular_below = 1e-6;

    VtTransform inverse;
    const Minors lower(a[2], a[3]);
    set_column_from_plus(inverse, 0, a[1], lower);
    set_column_from_minus(inverse, 1, a[0], lower);
    set_column_from_plus(inverse, 2, a[0], Minors(a[1], a[3]));
    set_column_from_minus(inverse, 3, a[0], Minors(a[1], a[2]));

    const double determinant =
        a[0][0] * inverse[0][0] + a[0][1] * inverse[1][0] + a[0][2] * inverse[2][0] + a[0][3] * inverse[3][0];
    if (singular_below > std::fabs(determinant))
        return inverse;

    const double factor = 1.0 / determinant;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            inverse[i][j] *= factor;
    return inverse;
}
