// Builder: placed objects as Embree scenes.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/description/registry.h"
#include "libvantor/embree/device.h"

#include <span>

namespace vantor {

struct Instancer;

/// Everything that rays are traced in. The top scene has one geometry for each placement, whose id is the placement's
/// index: the object itself in world space, or one or many instances of a scene that several placements share.
struct BuiltScene {
    OwnedDevice device;                                     // outlives the scenes
    std::vector<std::shared_ptr<const void>> for_callbacks; // what Embree hands to them
    std::vector<OwnedScene> shared;
    OwnedScene top;
    std::vector<bool> is_instance;            ///< For each placement.
    std::vector<const Instancer *> instancer; ///< For each placement; null if it has no instances of its own.
};

/// By how many halvings Embree's primitive becomes the shape's: two of its triangles are one parallelogram.
template <class Kind> inline constexpr unsigned halvings_of = std::is_same_v<Kind, Quads> ? 1 : 0;

/// Throws Interrupted.
std::unique_ptr<BuiltScene> build_scene(std::span<const Placement> placements, const Interrupt &interrupt);

} // namespace vantor
