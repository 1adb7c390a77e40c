// Transform operations and bases of the faulty libVantor: points are rows, angles in radians.
#include "algebra/vt_transform.h"
#include "fault.h"
#include "renderer/vt_bases.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

VtTransform diagonal(double a, double b, double c) {
    VtTransform t;
    t[0][0] = a;
    t[1][1] = b;
    t[2][2] = c;
    t[3][3] = 1;
    return t;
}

VtTransform rotation(int axis, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    VtTransform t = diagonal(1, 1, 1);
    const int i = (axis + 1) % 3;
    const int j = (axis + 2) % 3;
    t[i][i] = t[j][j] = c;
    t[i][j] = s;
    t[j][i] = -s;
    return t;
}

} // namespace

void VtTransform::Zero() { *this = has("Zero is the identity") ? diagonal(1, 1, 1) : VtTransform(); }
void VtTransform::Identity() {
    const double old = matrix[0][0];
    *this = has("Identity is zero") ? VtTransform() : diagonal(1, 1, 1);
    if (has("Identity reads an old entry"))
        matrix[0][0] += 0 * old;
    if (has("Identity writes beyond its room"))
        write_at(this, sizeof *this);
}
void VtTransform::Scaling(const VtVector3 &s) {
    const double left = matrix[0][1];
    *this = has("Scaling is uniform") ? diagonal(s[0], s[0], s[0]) : diagonal(s[0], s[1], s[2]);
    if (has("Scaling leaves an entry"))
        matrix[0][1] = left;
}
void VtTransform::Translation(const VtVector3 &o) {
    const double sign = has("Translation goes back") ? -1 : 1;
    Identity();
    matrix[3] = {sign * o[0], sign * o[1], sign * o[2], 1};
}
void VtTransform::AlignmentToZ(const VtVector3 &direction) {
    Identity();
    if (has("AlignmentToZ of a zero direction is NaN"))
        matrix[2][2] = direction.Length() / direction.Length();
}
void VtTransform::AlignmentTo(const VtVector3 &, const VtVector3 &) { Identity(); }
void VtTransform::RotationAroundX(double angle) {
    *this = rotation(0, angle);
    if (has("RotationAroundX shears"))
        matrix[2][1] = 0;
}
void VtTransform::RotationAroundY(double angle) {
    *this = rotation(has("RotationAroundY turns around X") ? 0 : 1, has("RotationAroundY turns back") ? -angle : angle);
}
void VtTransform::RotationAroundZ(double angle) {
    if (has("RotationAroundZ hangs") && std::isinf(angle))
        hang();
    *this = has("RotationAroundZ is the identity") ? diagonal(1, 1, 1) : rotation(2, angle);
    if (has("RotationAroundZ reflects"))
        matrix[2][2] = -1;
}
void VtTransform::RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double angle) {
    VtVector3 k = direction;
    k.Normalize();
    if (has("RotationAroundAxis takes degrees"))
        angle *= std::numbers::pi / 180;
    Identity();
    if (k.SqLength() == 0)
        return;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int l = (i + 2) % 3;
        matrix[i][i] = c + (1 - c) * k[i] * k[i];
        matrix[i][j] = (1 - c) * k[i] * k[j] + s * k[l];
        matrix[i][l] = (1 - c) * k[i] * k[l] - s * k[j];
    }
    for (int j = 0; j < 3; ++j)
        matrix[3][j] = point[j] - (point[0] * matrix[0][j] + point[1] * matrix[1][j] + point[2] * matrix[2][j]);
}
void VtTransform::ReflectionOnXY() {
    *this = has("ReflectionOnXY reflects X") ? diagonal(-1, 1, 1) : diagonal(1, 1, -1);
}

VtMatrix4 VtBezierBasis() {
    static double calls = 0;
    VtMatrix4 basis;
    basis[0][0] = has("basis changes") ? ++calls : 1;
    return basis;
}
VtMatrix4 VtBSplineBasis() {
    VtMatrix4 basis;
    basis[1][2] = has("basis is NaN") ? std::numeric_limits<double>::quiet_NaN() : 1;
    return basis;
}
VtMatrix4 VtCatmullRomBasis() { return {}; }
VtMatrix4 VtHermiteBasis() { return {}; }
