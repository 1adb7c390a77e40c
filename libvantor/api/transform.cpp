// VtTransform: the operations that this library defines. Points are rows, angles are in degrees.
#include "algebra/vt_transform.h"

#include "libvantor/base/numbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using vantor::cross;
using vantor::dot;

struct Angle {
    double cosine;
    double sine;
};

// Exact at every multiple of 90 degrees: the angle is first reduced, without rounding, to a quarter turn around 0.
// Adding 0.0 turns a negative zero into a positive one, so that printed matrices show 0 and not -0.
Angle angle_of(double degrees) {
    int quarter_turns = 0;
    const double rest = std::remquo(degrees, 90.0, &quarter_turns) * (std::numbers::pi / 180.0);
    const double c = std::cos(rest);
    const double s = std::sin(rest);
    switch (quarter_turns & 3) {
    case 0:
        return {c + 0.0, s + 0.0};
    case 1:
        return {0.0 - s, c + 0.0};
    case 2:
        return {0.0 - c, 0.0 - s};
    default:
        return {s + 0.0, 0.0 - c};
    }
}

// Unit length, for tiny and huge vectors too: scaled by the largest component before anything is squared. False for
// the zero vector.
bool make_unit(VtVector3 &v) {
    const double largest = std::max({std::fabs(v[0]), std::fabs(v[1]), std::fabs(v[2])});
    if (largest == 0.0)
        return false;
    for (int i = 0; i < 3; ++i)
        v[i] /= largest;
    v.Normalize();
    return true;
}

// Rodrigues' formula for rows, M = c I + (1 - c) k k^T - s [k]x, with k the unit axis.
void set_rotation(VtTransform &m, const VtVector3 &k, const Angle &angle) {
    const double c = angle.cosine;
    const double s = angle.sine;
    const double t = 1.0 - c;
    m[0] = {c + t * k[0] * k[0], t * k[0] * k[1] + s * k[2], t * k[0] * k[2] - s * k[1], 0.0};
    m[1] = {t * k[1] * k[0] - s * k[2], c + t * k[1] * k[1], t * k[1] * k[2] + s * k[0], 0.0};
    m[2] = {t * k[2] * k[0] + s * k[1], t * k[2] * k[1] - s * k[0], c + t * k[2] * k[2], 0.0};
    m[3] = {0.0, 0.0, 0.0, 1.0};
}

// The unit vector at right angles to a unit vector that is nearest to the coordinate axis which the vector leans to
// least; X before Y before Z where two are equal.
VtVector3 perpendicular_to(const VtVector3 &unit) {
    int axis = 0;
    for (int i = 1; i < 3; ++i)
        if (std::fabs(unit[i]) < std::fabs(unit[axis]))
            axis = i;
    VtVector3 result;
    for (int i = 0; i < 3; ++i)
        result[i] = (i == axis ? 1.0 : 0.0) - unit[axis] * unit[i];
    result.Normalize();
    return result;
}

} // namespace

void VtTransform::Zero() { *this = VtTransform(); }

void VtTransform::Identity() { Scaling({1.0, 1.0, 1.0}); }

void VtTransform::Scaling(const VtVector3 &factors) {
    matrix[0] = {factors[0], 0.0, 0.0, 0.0};
    matrix[1] = {0.0, factors[1], 0.0, 0.0};
    matrix[2] = {0.0, 0.0, factors[2], 0.0};
    matrix[3] = {0.0, 0.0, 0.0, 1.0};
}

void VtTransform::Translation(const VtVector3 &offset) {
    Identity();
    matrix[3] = {offset[0], offset[1], offset[2], 1.0};
}

void VtTransform::AlignmentToZ(const VtVector3 &direction) { AlignmentTo(direction, {0.0, 0.0, 1.0}); }

void VtTransform::AlignmentTo(const VtVector3 &from, const VtVector3 &to) {
    VtVector3 start = from;
    VtVector3 end = to;
    if (!make_unit(start) || !make_unit(end)) {
        Identity();
        return;
    }

    VtVector3 axis = cross(start, end);
    Angle angle{dot(start, end), axis.Length()};
    // Two unit vectors nearer to a line than this differ from it by rounding only, and their cross product is noise.
    constexpr double rounding = 1e-15;
    if (angle.sine > rounding) {
        // Between nearly opposite directions the axis has few good digits, and needs none but those that keep it at
        // right angles to the start.
        axis.Normalize();
        const double along = dot(axis, start);
        axis = {axis[0] - along * start[0], axis[1] - along * start[1], axis[2] - along * start[2]};
        axis.Normalize();
        const double length = std::hypot(angle.cosine, angle.sine);
        angle = {angle.cosine / length, angle.sine / length};
    } else if (angle.cosine < 0.0) {
        axis = perpendicular_to(start);
        angle = {-1.0, 0.0};
    } else if (angle.cosine > 0.0) {
        Identity();
        return;
    }
    set_rotation(*this, axis, angle);
}

void VtTransform::RotationAroundX(double degrees) {
    const Angle angle = angle_of(degrees);
    matrix[0] = {1.0, 0.0, 0.0, 0.0};
    matrix[1] = {0.0, angle.cosine, angle.sine, 0.0};
    matrix[2] = {0.0, 0.0 - angle.sine, angle.cosine, 0.0};
    matrix[3] = {0.0, 0.0, 0.0, 1.0};
}

void VtTransform::RotationAroundY(double degrees) {
    const Angle angle = angle_of(degrees);
    matrix[0] = {angle.cosine, 0.0, 0.0 - angle.sine, 0.0};
    matrix[1] = {0.0, 1.0, 0.0, 0.0};
    matrix[2] = {angle.sine, 0.0, angle.cosine, 0.0};
    matrix[3] = {0.0, 0.0, 0.0, 1.0};
}

void VtTransform::RotationAroundZ(double degrees) {
    const Angle angle = angle_of(degrees);
    matrix[0] = {angle.cosine, angle.sine, 0.0, 0.0};
    matrix[1] = {0.0 - angle.sine, angle.cosine, 0.0, 0.0};
    matrix[2] = {0.0, 0.0, 1.0, 0.0};
    matrix[3] = {0.0, 0.0, 0.0, 1.0};
}

void VtTransform::RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double degrees) {
    VtVector3 axis = direction;
    if (!make_unit(axis)) {
        Identity();
        return;
    }
    set_rotation(*this, axis, angle_of(degrees));

    // Moved so that the point stays where it is: p' = (p - point) R + point.
    for (int c = 0; c < 3; ++c)
        matrix[3][c] = point[c] - (point[0] * matrix[0][c] + point[1] * matrix[1][c] + point[2] * matrix[2][c]);
}

void VtTransform::ReflectionOnXY() { Scaling({1.0, 1.0, -1.0}); }
