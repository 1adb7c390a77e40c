// Builder: placed objects as Embree scenes.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/entities/registry.h"
#include "libvantor/geometry/device.h"

#include <span>

namespace vantor {

/// Everything that rays are traced in. The top scene has one geometry for each placement, whose id is the placement's
/// index: the object itself in world space, or an instance of a scene that several placements share.
struct BuiltScene {
    OwnedDevice device;                                     // outlives the scenes
    std::vector<std::shared_ptr<const void>> for_callbacks; // what Embree hands to them
    std::vector<OwnedScene> shared;
    OwnedScene top;
    std::vector<bool> is_instance; ///< For each placement.
};

/// Nothing if it was interrupted.
std::unique_ptr<BuiltScene> build_scene(std::span<const Placement> placements, const Interrupt &interrupt);

} // namespace vantor
