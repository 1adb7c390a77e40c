// World: a scene, frozen for a pass.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/geometry/tracer.h"
#include "libvantor/world/light_set.h"

namespace vantor {

/// What a pass works on. Constant, shared by all threads. The registry that it was made from has to outlive it and not
/// to change meanwhile.
struct World {
    Camera camera;
    Tracer tracer;
    LightSet lights;
    std::span<const Placement> placements;
};

/// The registry has a camera. Nothing if it was interrupted.
std::optional<World> freeze(const Registry &registry, const Interrupt &interrupt);

} // namespace vantor
