// Emitters: the lights of an object that shines.
#pragma once

#include "libvantor/lights/light.h"
#include "libvantor/shapes/shape.h"

#include <vector>

namespace vantor {

/// Which lights the primitives of an object are: one for each in turn, one for all, or none.
struct EmitterRange {
    int first = -1; ///< The index of the light of the first primitive; -1 if nothing shines.
    int step = 0;   ///< 1 if each primitive has a light of its own, 0 otherwise.

    int of(std::uint32_t primitive) const { return first + static_cast<int>(primitive) * step; }
};

/// Appends the emitters of a shape.
EmitterRange append_emitters(const Shape &shape, const VtTransform &world_from_object, Color radiance,
                             std::vector<Light> &lights);

/// Appends one emitter for the whole of an object, without regard to its shape.
EmitterRange append_unsampled_emitter(Color radiance, std::vector<Light> &lights);

} // namespace vantor
