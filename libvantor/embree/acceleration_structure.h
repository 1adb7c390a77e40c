// Acceleration structure: placed objects as Embree scenes.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/description/registry.h"
#include "libvantor/embree/geometry.h"
#include "libvantor/embree/tracer.h"

#include <span>

namespace vantor {

struct Instancer;

/// How Embree's hits on a placement are to be read.
struct HitDecoding {
    HitFormat format;
    Affine map;                 ///< World from object, but for instances.
    float front;                ///< -1 where a copy in world space is mirrored and its winding turned round.
    bool is_instance;           ///< Embree's normal is in object space.
    bool may_be_crossed;        ///< Rays may go on behind it.
    const Instancer *instancer; ///< The placement's instances; null if it has none of its own.
};

/// Everything that rays are traced in. The top level is a scene with one geometry for each placement, whose id is the
/// placement's index:
///
/// - a small object itself, as a copy in world space, which is quickest to trace;
/// - a large object likewise, but in a scene of its own, which is built once and stays when others are added;
/// - an instance, or many, of a scene that holds the object in its own space, which several placements share.
///
/// Which of these it is depends on the placements alone, not on when they were added: rays find the same surfaces
/// whether the structure was built at once or step by step.
class AccelerationStructure {
  public:
    AccelerationStructure() : device(make_device()) {}

    /// Builds what is missing: since the last time, placements may have been added. Throws Interrupted; the objects
    /// that are built by then stay, and a further call builds the rest. The placements' objects have to outlive it.
    void update(std::span<const Placement> placements, const Interrupt &interrupt);

    RTCDevice of_device() const { return device.get(); }
    RTCScene top_level() const { return top.get(); }

    /// Whether hits can be filtered: all of a ray collected, or those refused that it has crossed. This makes tracing a
    /// little slower, and so is only where there are surfaces that rays may cross.
    bool can_filter_hits() const { return (flags & calls_query_filters) != 0; }
    const HitDecoding &decoding(std::uint32_t placement) const { return placed[placement].decoding; }
    const BuildCounts &builds() const { return counts; }

  private:
    enum class Form { Copy, CopyInOwnScene, Instance, ManyInstances };

    struct Placed {
        Form form;
        OwnedGeometry geometry; // in the top level
        HitDecoding decoding;
    };
    struct SharedScene {
        std::shared_ptr<const void> callback_data; // outlives the scene
        HitFormat format;
        OwnedScene scene;
    };

    Form form_of(const Placement &placement) const;
    Placed place(std::size_t index, const Placement &placement, Form form, const Interrupt &interrupt);
    void hide(RTCGeometry geometry) const;
    OwnedGeometry copy(std::size_t index, const Placement &placement, HitFormat &format);
    const SharedScene &shared_scene(const Object &object, const Interrupt &interrupt);
    OwnedGeometry instance(RTCScene of, const Affine &map) const;
    OwnedGeometry many_instances(std::size_t index, const Placement &placement, RTCScene of, const Instancer *&made);
    OwnedScene scene_of_one(RTCGeometry geometry, const Interrupt &interrupt);
    OwnedScene new_scene() const;
    void commit(RTCScene scene, const Interrupt &interrupt) const;
    void forget_all();

    // Released from the last to the first: scenes before what they use.
    OwnedDevice device;
    std::unordered_map<std::size_t, std::shared_ptr<const void>> callback_data; // of placements, by index
    std::unordered_map<const Object *, SharedScene> shared;
    std::vector<Placed> placed;
    OwnedScene top; // null while it has to be built

    std::unordered_map<const Object *, std::size_t> uses; // of the first so many placements
    std::size_t counted = 0;
    RTCSceneFlags flags = RTC_SCENE_FLAG_NONE; // of all scenes
    BuildCounts counts;
};

} // namespace vantor
