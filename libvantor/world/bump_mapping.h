// Bump mapping: normals that follow a pattern.
#pragma once

#include "libvantor/description/material.h"
#include "libvantor/shapes/surface_parameters.h"

namespace vantor {

/// A point of a surface, and how to move along it.
struct BumpPoint {
    Affine world_from_object;
    SurfaceParameters parameters;
    PatternPoint at;
    Vec3 geometric_normal; ///< In the world, unit length.
    float step;            ///< In the object's space: how far apart heights are compared.

    /// How u and v change per length along a direction of the object's space.
    Point2f uv_along(Vec3 direction) const;

    /// The derivative of the point by v in the object's space; where the shape has none, at right angles to that by u,
    /// and as long.
    Vec3 along_v() const;
};

/// The shading normal, bent by the variation's normal map and bumps; of unit length, and on the side of the geometric
/// normal.
Vec3 bent_normal(const BumpPoint &point, const Variation &variation, Vec3 shading_normal);

} // namespace vantor
