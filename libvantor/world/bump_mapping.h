// Bump mapping: normals that follow a pattern.
#pragma once

#include "libvantor/description/material.h"
#include "libvantor/shapes/surface_parameters.h"

namespace vantor {

/// A point of a surface, as what moves along it sees it.
struct BumpPoint {
    Affine world_from_object;
    SurfaceParameters parameters;
    PatternPoint at;
    Vec3 geometric_normal; ///< In the world, unit length.
    float step;            ///< In the object's space: how far apart heights are compared.

    /// The changes of u and v on the way along a direction of the object's space.
    Point2f uv_along(Vec3 direction) const;

    /// How the point moves with v in the object's space; if the shape does not tell, across u and as far.
    Vec3 along_v() const;
};

/// The shading normal, bent by what the variation says; of unit length, and on the side of the geometric normal.
Vec3 bent_normal(const BumpPoint &point, const Variation &variation, Vec3 shading_normal);

} // namespace vantor
