// Instance: where an instance of an object stands.
#pragma once

#include "libvantor/base/numbers.h"

namespace vantor {

/// An affine map in 48 bytes, as there may be millions: p' = p M + offset.
struct Instance {
    Linear linear;
    Vec3 offset;

    explicit Instance(const VtTransform &m)
        : linear{to_float(row(m, 0)), to_float(row(m, 1)), to_float(row(m, 2))}, offset(to_float(row(m, 3))) {}

    VtTransform transform() const {
        VtTransform result;
        const Vec3 rows[4] = {linear.row0, linear.row1, linear.row2, offset};
        for (int r = 0; r < 4; ++r)
            result[r] = {rows[r].x, rows[r].y, rows[r].z, r == 3 ? 1.0 : 0.0};
        return result;
    }

  private:
    static VtVector3 row(const VtTransform &m, int r) { return {m[r][0], m[r][1], m[r][2]}; }
};

} // namespace vantor
