// AOV sample: what a path sees first.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"

#include <cstdint>

namespace vantor {

/// The first surface of a path that scatters it. There is none where the path leaves the scene, or a medium scatters it
/// before.
struct AovSample {
    Vec3 start{}; ///< Of the path; given.
    bool is_hit = false;
    Color albedo{};
    Vec3 normal{}; ///< The shading normal in the world, on the side that is seen.
    Vec3 position{};
    float depth = 0; ///< From the start of the path.
    std::int64_t object = 0;
};

} // namespace vantor
