// Canonical: the spaces in which formulas describe round shapes.
#include "libvantor/shapes/canonical.h"

namespace vantor {

// The frame around the axis follows Duff et al., "Building an Orthonormal Basis, Revisited", JCGT 2017, with the
// coordinates in the order z, x, y.
CanonicalMap::CanonicalMap(const VtVector3 &origin, const VtVector3 &axis, double across)
    : image_y(axis[0], axis[1], axis[2]), offset(origin[0], origin[1], origin[2]) {
    const Double3 up = image_y * (1 / axis.Length());
    const double sign = std::copysign(1.0, up.y);
    const double a = -1 / (sign + up.y);
    const double b = up.x * up.z * a;
    image_x = Double3{sign + up.x * up.x * a, -up.x, b} * across;
    image_z = Double3{sign * b, -sign * up.z, 1 + sign * up.z * up.z * a} * across;
    invert();
}

CanonicalMap CanonicalMap::then(const Affine &outer) const {
    const Double3 row0(outer.linear.row0);
    const Double3 row1(outer.linear.row1);
    const Double3 row2(outer.linear.row2);
    const auto mapped = [&](Double3 d) { return row0 * d.x + row1 * d.y + row2 * d.z; };
    CanonicalMap result;
    result.image_x = mapped(image_x);
    result.image_y = mapped(image_y);
    result.image_z = mapped(image_z);
    result.offset = mapped(offset) + Double3(outer.offset);
    result.invert();
    return result;
}

void CanonicalMap::invert() {
    const Double3 yz = cross(image_y, image_z);
    const double inverse_determinant = 1 / dot(image_x, yz);
    normal_x = yz * inverse_determinant;
    normal_y = cross(image_z, image_x) * inverse_determinant;
    normal_z = cross(image_x, image_y) * inverse_determinant;
}

} // namespace vantor
