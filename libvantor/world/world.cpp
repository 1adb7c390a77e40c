// World: a scene, frozen; and how a pass looks at it.
#include "libvantor/world/world.h"

namespace vantor {

namespace {

void update_placements(World &world, const Registry &registry, const Interrupt &interrupt) {
    const std::vector<Placement> &placements = registry.placements();
    world.tracer.update(placements, interrupt);
    world.placements = placements;
    world.media = registry.media();
    world.has_media = std::ranges::any_of(placements, [](const Placement &p) { return p.interior >= 0; });
    world.has_hidden = std::ranges::any_of(placements, [](const Placement &p) { return p.is_hidden; });
    world.is_opaque = std::ranges::none_of(placements, [](const Placement &p) { return p.material->is_see_through(); });
    world.maps.clear();
    if (std::ranges::any_of(placements, [](const Placement &p) { return p.varies(); })) {
        world.maps.reserve(placements.size());
        for (const Placement &placement : placements)
            world.maps.emplace_back(to_float(placement.world_from_object));
    }
}

void update(World &world, const Registry &registry, bool have_placements_changed, const Interrupt &interrupt) {
    if (have_placements_changed)
        update_placements(world, registry, interrupt);
    world.lights = LightSet(registry.lights(), world.placements);
}

} // namespace

View view_of(const World &world, const Registry &registry) {
    const Camera &camera = *registry.camera();
    // The stack of a camera without media around is empty, which saves the search.
    return {camera, registry.settings(),
            world.has_media ? media_at(camera.position(), world.tracer, world.placements) : MediumStack()};
}

const World &WorldCache::current(const Registry &registry, const Interrupt &interrupt) {
    const Revision now = registry.revision();
    if (revision == now)
        return *world;
    const bool have_placements_changed = !revision || revision->placements != now.placements;
    revision.reset();
    try {
        if (!world)
            world.emplace();
        update(*world, registry, have_placements_changed, interrupt);
    } catch (const Interrupted &) {
        // What is built can be built upon.
        throw;
    } catch (...) {
        // Memory was short, and half a world would keep it so.
        world.reset();
        throw;
    }
    revision = now;
    return *world;
}

} // namespace vantor
