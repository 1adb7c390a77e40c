// World: a scene, frozen; and how a pass looks at it.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/embree/tracer.h"
#include "libvantor/world/light_set.h"
#include "libvantor/world/media.h"

namespace vantor {

/// An object-to-world transform in floats, and its mean scale.
struct ObjectMap {
    Affine world_from_object;
    float scale; ///< Of lengths: the cube root of that of volumes.

    explicit ObjectMap(const Affine &map) : world_from_object(map), scale(std::cbrt(std::fabs(map.determinant))) {}
};

/// A scene as it stands: what rays meet, what lights it, what fills it. Constant during a pass, shared by all threads.
/// The registry that it was made from has to outlive it.
struct World {
    Tracer tracer;
    LightSet lights;
    std::span<const Placement> placements;
    std::vector<Medium> media;   ///< What MediumStack has indexes of.
    std::vector<ObjectMap> maps; ///< Of the placements, but for their instances; empty if no surface varies.
    bool has_media = false;
    bool is_opaque = true;   ///< No surface lets light pass straight through.
    bool has_hidden = false; ///< The camera does not see everything.

    /// The transform of the object that was hit, of a surface that varies.
    ObjectMap map_at(const Hit &hit) const {
        const Placement &placement = placements[hit.placement];
        return placement.instances ? ObjectMap(placement.map(hit.instance)) : maps[hit.placement];
    }

    /// The medium that counts where there is one.
    const Medium &media_of(const MediumStack &stack) const {
        return media[static_cast<std::size_t>(stack.innermost())];
    }
};

/// How one pass looks at a world.
struct View {
    Camera camera;
    Settings settings;

    /// The media around a camera of a single position. Every other ray of a camera has its own: see media_at().
    MediumStack camera_media;
};

/// The view of the registry's camera and settings. There has to be a camera.
View view_of(const World &world, const Registry &registry);

/// The world that a scene keeps until something in it changes.
class WorldCache {
  public:
    /// The world of the registry as it is now, good until the next call; always of the same registry. Throws
    /// Interrupted.
    ///
    /// What stays of the one before are the acceleration structures of single objects; after an added object, the top
    /// level, all lights and their tree are made anew. All structures are, when the first body with an interior comes,
    /// or the first surface that may be crossed; that of an object is, when a further use turns its copies into
    /// instances.
    const World &current(const Registry &registry, const Interrupt &interrupt);

  private:
    std::optional<World> world;
    std::optional<Revision> revision; // of the registry, when the world was made; none if it is not finished
};

} // namespace vantor
