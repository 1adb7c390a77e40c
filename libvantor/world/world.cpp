// World: a scene, frozen for a pass.
#include "libvantor/world/world.h"

namespace vantor {

std::optional<World> freeze(const Registry &registry, const Interrupt &interrupt) {
    const std::vector<Placement> &placements = registry.placements();
    std::optional<Tracer> tracer = Tracer::build(placements, interrupt);
    if (!tracer)
        return {};

    LightSet lights(registry.lights(), placements, tracer->radius());
    const bool has_media = std::ranges::any_of(placements, [](const Placement &p) { return p.interior >= 0; });
    const bool is_opaque =
        std::ranges::none_of(placements, [](const Placement &p) { return p.material->is_see_through(); });
    std::vector<Affine> maps;
    if (std::ranges::any_of(placements, [](const Placement &p) { return p.varies(); })) {
        maps.reserve(placements.size());
        for (const Placement &placement : placements)
            maps.push_back(to_float(placement.world_from_object));
    }
    // The stack of a camera without media around is empty, which saves the search.
    const Camera camera = registry.camera() ? *registry.camera() : Camera(PanoramaCamera{});
    const MediumStack camera_media = has_media ? media_at(camera.position(), *tracer, placements) : MediumStack();
    return World{camera,          std::move(*tracer), std::move(lights), placements,          registry.media(),
                 std::move(maps), has_media,          is_opaque,         registry.settings(), camera_media};
}

} // namespace vantor
