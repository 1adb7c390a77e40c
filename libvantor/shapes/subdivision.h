// Subdivision: the smooth surface of a polygon mesh, by Catmull and Clark.
#pragma once

#include "libvantor/shapes/mesh.h"

namespace vantor {

/// As triangles whose corners lie on the limit surface, with its normals. Nothing, after a diagnostic, if there is
/// nothing to see.
std::optional<TriangleMesh> make_subdivision(const Parameters &parameters, const CallReport &report);

} // namespace vantor
