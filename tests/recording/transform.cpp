// Transform operations of the recording libVantor: points are rows, angles in degrees.
#include "call.h"

#include <cmath>
#include <numbers>

namespace {

recording::Call operation(const char *name, const VtTransform &transform) {
    recording::Call call(name);
    call.with("address", static_cast<const void *>(&transform));
    return call;
}

VtVector3 cross(const VtVector3 &a, const VtVector3 &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const VtVector3 &a, const VtVector3 &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

VtTransform diagonal(double a, double b, double c, double d) {
    VtTransform result;
    result[0][0] = a;
    result[1][1] = b;
    result[2][2] = c;
    result[3][3] = d;
    return result;
}

// Rodrigues' formula: turns counter-clockwise about the axis, which need not be of unit length.
VtTransform rotation(VtVector3 axis, double cosine, double sine) {
    VtTransform result = diagonal(1, 1, 1, 1);
    axis.Normalize();
    if (axis.SqLength() == 0)
        return result;
    for (int i = 0; i < 3; ++i) {
        VtVector3 unit;
        unit[i] = 1;
        const VtVector3 sideways = cross(axis, unit);
        for (int j = 0; j < 3; ++j)
            result[i][j] = unit[j] * cosine + sideways[j] * sine + axis[j] * axis[i] * (1 - cosine);
    }
    return result;
}

VtTransform rotation(const VtVector3 &axis, double degrees) {
    const double radians = degrees * std::numbers::pi / 180;
    return rotation(axis, std::cos(radians), std::sin(radians));
}

VtTransform alignment(VtVector3 from, VtVector3 to) {
    from.Normalize();
    to.Normalize();
    const VtVector3 axis = cross(from, to);
    if (axis.SqLength() > 0)
        return rotation(axis, dot(from, to), axis.Length());
    if (dot(from, to) >= 0)
        return diagonal(1, 1, 1, 1);
    // Opposite: half a turn about whatever is perpendicular, X if possible.
    const VtVector3 sideways = from[0] == 0 ? VtVector3(1, 0, 0) : VtVector3(-from[1], from[0], 0);
    return rotation(sideways.SqLength() > 0 ? sideways : VtVector3(0, 1, 0), -1, 0);
}

} // namespace

void VtTransform::Zero() {
    operation("VtTransform::Zero", *this).done();
    *this = {};
}

void VtTransform::Identity() {
    operation("VtTransform::Identity", *this).done();
    *this = diagonal(1, 1, 1, 1);
}

void VtTransform::Scaling(const VtVector3 &factors) {
    operation("VtTransform::Scaling", *this).with("factors", factors).done();
    *this = diagonal(factors[0], factors[1], factors[2], 1);
}

void VtTransform::Translation(const VtVector3 &offset) {
    operation("VtTransform::Translation", *this).with("offset", offset).done();
    *this = diagonal(1, 1, 1, 1);
    (*this)[3] = {offset[0], offset[1], offset[2], 1};
}

void VtTransform::AlignmentToZ(const VtVector3 &direction) {
    operation("VtTransform::AlignmentToZ", *this).with("direction", direction).done();
    *this = alignment(direction, {0, 0, 1});
}

void VtTransform::AlignmentTo(const VtVector3 &from, const VtVector3 &to) {
    operation("VtTransform::AlignmentTo", *this).with("from", from).with("to", to).done();
    *this = alignment(from, to);
}

void VtTransform::RotationAroundX(double degrees) {
    operation("VtTransform::RotationAroundX", *this).with("degrees", degrees).done();
    *this = rotation({1, 0, 0}, degrees);
}

void VtTransform::RotationAroundY(double degrees) {
    operation("VtTransform::RotationAroundY", *this).with("degrees", degrees).done();
    *this = rotation({0, 1, 0}, degrees);
}

void VtTransform::RotationAroundZ(double degrees) {
    operation("VtTransform::RotationAroundZ", *this).with("degrees", degrees).done();
    *this = rotation({0, 0, 1}, degrees);
}

void VtTransform::RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double degrees) {
    operation("VtTransform::RotationAroundAxis", *this)
        .with("point", point)
        .with("direction", direction)
        .with("degrees", degrees)
        .done();
    // The point stays where it is: p = p R + offset.
    VtTransform result = rotation(direction, degrees);
    for (int j = 0; j < 3; ++j)
        result[3][j] = point[j] - (point[0] * result[0][j] + point[1] * result[1][j] + point[2] * result[2][j]);
    *this = result;
}

void VtTransform::ReflectionOnXY() {
    operation("VtTransform::ReflectionOnXY", *this).done();
    *this = diagonal(1, 1, -1, 1);
}
