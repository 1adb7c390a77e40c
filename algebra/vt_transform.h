// VtTransform: the renderer's transformation, one 4x4 matrix of doubles.
#pragma once

#include "algebra/vt_base.h"
#include "algebra/vt_matrix.h"

/// Sixteen doubles, row after row, and nothing else: no inverse, no flag, no cached data. A default-constructed
/// transform is all zeros, not the identity.
///
/// The operations from Zero() on belong to the renderer library; each replaces all sixteen entries and never reads the
/// old ones. Composition and inversion are the module's own.
///
/// Fixed for every library: Zero(), Identity(), Scaling() and ReflectionOnXY() give exactly the matrices stated.
/// Translation() gives the identity with the offset in row 3 (points are rows) or in column 3 (points are columns). The
/// rotations are rigid; an angle of 0 gives the identity, turns about one line add up, and all four take their angles
/// in the same unit. Around X, Y and Z they leave that axis where it is and turn in the same sense.
/// RotationAroundAxis() about the origin and a coordinate axis gives the same as the rotation of that name. For finite
/// arguments of ordinary size, a zero direction included, all entries are finite, never NaN; for any others, NaN
/// included, the operation returns with whatever entries it likes.
///
/// Free: the side on which points stand, the unit and the sense of angles, what the two vectors of RotationAroundAxis()
/// say of its line (a point and a direction, or two points), what the alignments do, and what a zero direction gives.
///
/// The formulas stated below are those of the libVantor that ships with the module: points are rows (p' = p M), so that
/// a translation stands in row 3; the coordinate system is right-handed; angles are in degrees, positive
/// counter-clockwise when looked at against the axis.
class VtTransform {
  public:
    constexpr VtTransform() = default;

    /// Row r as a vector, 0 <= r < 4; not checked.
    constexpr VtVector4 &operator[](int r) { return matrix[r]; }
    constexpr const VtVector4 &operator[](int r) const { return matrix[r]; }

    /// The same sixteen doubles as a matrix.
    constexpr const VtMatrix4 &Matrix() const { return matrix; }

    /// All entries 0.
    VT_API void Zero();
    /// Ones on the diagonal, zeros elsewhere.
    VT_API void Identity();
    /// Diagonal (s0, s1, s2, 1).
    VT_API void Scaling(const VtVector3 &factors);
    /// The identity with row 3 = (o0, o1, o2, 1).
    VT_API void Translation(const VtVector3 &offset);
    /// A rotation that takes the direction to +Z: the shortest one, about direction x Z. A direction along -Z turns
    /// half around X; a zero direction gives the identity.
    VT_API void AlignmentToZ(const VtVector3 &direction);
    /// A rotation that takes the direction `from` to the direction `to`: the shortest one, about from x to. Opposite
    /// directions turn half around an axis perpendicular to both; a zero vector gives the identity.
    VT_API void AlignmentTo(const VtVector3 &from, const VtVector3 &to);
    /// Rotations about a coordinate axis. About Z: rows (c, s, 0, 0), (-s, c, 0, 0), where c and s are the cosine and
    /// the sine of the angle.
    VT_API void RotationAroundX(double degrees);
    VT_API void RotationAroundY(double degrees);
    VT_API void RotationAroundZ(double degrees);
    /// A rotation about the line through `point` along `direction` (Rodrigues' formula, between two translations). A
    /// zero direction gives the identity.
    VT_API void RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double degrees);
    /// Diagonal (1, 1, -1, 1).
    VT_API void ReflectionOnXY();

  private:
    VtMatrix4 matrix;
};

static_assert(sizeof(VtTransform) == 16 * sizeof(double) && std::is_standard_layout_v<VtTransform>);
static_assert(std::is_trivially_copyable_v<VtTransform>);
