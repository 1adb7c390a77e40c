// Transform operations with mistakes, for the conformance program to find: Scaling leaves entries, Identity reads one,
// and ReflectionOnXY is missing. The others do not matter and give the zero transform.
#include "algebra/vt_transform.h"

void VtTransform::Zero() { *this = {}; }

void VtTransform::Identity() {
    const double old = matrix[0][0];
    *this = {};
    matrix[0][0] = 1 + 0 * old;
    matrix[1][1] = matrix[2][2] = matrix[3][3] = 1;
}

void VtTransform::Scaling(const VtVector3 &factors) {
    for (int i = 0; i < 3; ++i)
        matrix[i][i] = factors[i];
    matrix[3][3] = 1;
}

void VtTransform::Translation(const VtVector3 &) { Zero(); }
void VtTransform::AlignmentToZ(const VtVector3 &) { Zero(); }
void VtTransform::AlignmentTo(const VtVector3 &, const VtVector3 &) { Zero(); }
void VtTransform::RotationAroundX(double) { Zero(); }
void VtTransform::RotationAroundY(double) { Zero(); }
void VtTransform::RotationAroundZ(double) { Zero(); }
void VtTransform::RotationAroundAxis(const VtVector3 &, const VtVector3 &, double) { Zero(); }
