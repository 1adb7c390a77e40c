// World: a scene, frozen for a pass.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/embree/tracer.h"
#include "libvantor/lights/light_set.h"
#include "libvantor/world/media.h"

namespace vantor {

/// What a pass works on. Constant, shared by all threads. The registry that it was made from has to outlive it and not
/// to change meanwhile.
struct World {
    Camera camera;
    Tracer tracer;
    LightSet lights;
    std::span<const Placement> placements;
    std::span<const Medium> media; ///< What MediumStack has indexes of.
    std::vector<Affine> maps;      ///< Of the placements, but for their instances; empty if no surface varies.
    bool has_media;
    bool is_opaque; ///< No surface lets light pass straight through.
    Settings settings;

    /// The media around a camera of a single place. Every other ray of a camera has its own: see media_at().
    MediumStack camera_media;

    /// How an object stands of which a ray has hit a surface that varies.
    Affine map_at(const Hit &hit) const {
        const Placement &placement = placements[hit.placement];
        return placement.instances ? placement.map(hit.instance) : maps[hit.placement];
    }

    /// The medium that counts where there is one.
    const Medium &media_of(const MediumStack &stack) const {
        return media[static_cast<std::size_t>(stack.innermost())];
    }
};

/// Nothing if it was interrupted. Without a camera in the registry, the world has one that nothing should look through.
std::optional<World> freeze(const Registry &registry, const Interrupt &interrupt);

} // namespace vantor
