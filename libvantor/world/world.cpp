// World: a scene, frozen; and how a pass looks at it.
#include "libvantor/world/world.h"

namespace vantor {

namespace {

World frozen(const Registry &registry, const Interrupt &interrupt) {
    const std::vector<Placement> &placements = registry.placements();
    Tracer tracer = Tracer::build(placements, interrupt);
    LightSet lights(registry.lights(), placements, tracer.radius());
    const bool has_media = std::ranges::any_of(placements, [](const Placement &p) { return p.interior >= 0; });
    const bool is_opaque =
        std::ranges::none_of(placements, [](const Placement &p) { return p.material->is_see_through(); });
    std::vector<Affine> maps;
    if (std::ranges::any_of(placements, [](const Placement &p) { return p.varies(); })) {
        maps.reserve(placements.size());
        for (const Placement &placement : placements)
            maps.push_back(to_float(placement.world_from_object));
    }
    return World{std::move(tracer), std::move(lights), placements, registry.media(),
                 std::move(maps),   has_media,         is_opaque};
}

} // namespace

View view_of(const World &world, const Registry &registry) {
    const Camera &camera = *registry.camera();
    // The stack of a camera without media around is empty, which saves the search.
    return {camera, registry.settings(),
            world.has_media ? media_at(camera.position(), world.tracer, world.placements) : MediumStack()};
}

const World &WorldCache::current(const Registry &registry, const Interrupt &interrupt) {
    if (!world || revision != registry.revision()) {
        world.reset();
        world.emplace(frozen(registry, interrupt));
        revision = registry.revision();
    }
    return *world;
}

} // namespace vantor
