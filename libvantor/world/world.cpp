// World: a scene, frozen for a pass.
#include "libvantor/world/world.h"

namespace vantor {

std::optional<World> freeze(const Registry &registry, const Interrupt &interrupt) {
    const std::vector<Placement> &placements = registry.placements();
    std::optional<Tracer> tracer = Tracer::build(placements, interrupt);
    if (!tracer)
        return {};

    LightSet lights(registry.lights(), placements, tracer->radius());
    std::vector<Material> materials;
    materials.reserve(placements.size());
    for (const Placement &placement : placements)
        materials.push_back(placement.material);
    return World{*registry.camera(), std::move(*tracer), std::move(lights), std::move(materials)};
}

} // namespace vantor
