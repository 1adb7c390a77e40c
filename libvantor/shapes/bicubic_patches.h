// Bicubic patches: a grid of bicubic patches, each spanned by 4 x 4 control points.
#pragma once

#include "libvantor/shapes/mesh.h"

namespace vantor {

/// As triangles whose corners lie on the patches, with the patches' own normals; (u, v) runs from 0 to 1 over the whole
/// grid, and the front is where u, v and the normal are right-handed. Nothing, after a diagnostic, if there is nothing
/// to see.
std::optional<TriangleMesh> make_patches(const Parameters &parameters, const CallReport &report);

} // namespace vantor
