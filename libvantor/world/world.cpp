// World: a scene, frozen for a pass.
#include "libvantor/world/world.h"

namespace vantor {

std::optional<World> freeze(const Registry &registry, const Interrupt &interrupt) {
    const std::vector<Placement> &placements = registry.placements();
    std::optional<Tracer> tracer = Tracer::build(placements, interrupt);
    if (!tracer)
        return {};

    LightSet lights(registry.lights(), placements, tracer->radius());
    return World{*registry.camera(), std::move(*tracer), std::move(lights), placements};
}

} // namespace vantor
