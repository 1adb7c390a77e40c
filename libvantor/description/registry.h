// Registry: everything that a script has described so far, and the blocks that are open.
#pragma once

#include "libvantor/description/camera.h"
#include "libvantor/description/imager.h"
#include "libvantor/description/interior.h"
#include "libvantor/description/light.h"
#include "libvantor/description/material.h"
#include "libvantor/description/object.h"
#include "libvantor/description/usage.h"

#include <deque>
#include <unordered_map>
#include <vector>

namespace vantor {

/// One object, put into the scene.
struct Placement {
    const Object *object;
    VtTransform world_from_object; ///< Usable.
    const Material *material;
    int interior;                           ///< The medium inside, an index of media(); -1 for none.
    int light;                              ///< The area light that shines from it, an index of lights(); -1 for none.
    const std::vector<Instance> *instances; ///< Where the object stands before that transform; null if it does so once.
    const std::vector<Color> *instance_colors = nullptr; ///< Which each of them carries; null if they carry none.
    bool is_hidden = false; ///< The camera does not see it, nor what it does to light on its way to the camera.

    /// Whether rays may go on behind its surface: it bounds a medium, or lets light pass.
    bool may_be_crossed() const { return interior >= 0 || material->is_see_through() || transmits(material->bsdf); }

    /// Whether its surface is not the same at every point.
    bool varies() const { return material->variation || has_colors(); }

    /// Whether its primitives or instances carry colours, which the material's is multiplied with.
    bool has_colors() const { return object->has_colors || instance_colors; }

    /// The colour that is carried at Embree's coordinates on a primitive of one of its instances.
    Color color_at(std::uint32_t instance, std::uint32_t primitive, Point2f on_primitive) const {
        const Color color =
            object->has_colors ? vantor::color_at(object->shape, primitive, on_primitive) : Color{1, 1, 1};
        return instance_colors ? color * (*instance_colors)[instance] : color;
    }

    /// The maps of one of its instances, or of all of it.
    Affine map(std::uint32_t instance) const {
        return to_float(instances ? Compose((*instances)[instance].transform(), world_from_object) : world_from_object);
    }
};

/// The state of a description, as counts of its changes: two of them tell what changed in between.
struct Revision {
    std::size_t placements = 0; ///< How many there are; they are only ever added.
    unsigned long lights = 0;   ///< Grows when a light is made, switched on or switched off.

    bool operator==(const Revision &) const = default;
};

/// The one writer of descriptions. Every mistake is reported and leaves the registry usable. Nothing here knows how a
/// picture is made.
class Registry {
  public:
    explicit Registry(Report &all) : report(all) {}

    // Create.

    /// An id, never given before. Ids count from 1, over entities of all kinds.
    VtLong take_id() noexcept { return ++last_id; }
    void create(VtLong id, EntityKind kind, const char *type, const VtArgList &list);

    // Begin and end.

    void begin_imager(VtLong id);
    void end_imager();
    void begin_interior(VtLong id);
    void end_interior();
    void switch_light(VtLong id, bool on);
    void begin_light();
    void end_light();
    void begin_material(VtLong id);
    void end_material();

    // Instance.

    void add_object(VtLong id);
    void begin_transform(const VtTransform &transform);
    void end_transform();

    // What has been described, for the passes.

    /// The camera that was made last; null if there is none.
    const Camera *camera() const { return current_camera ? &*current_camera : nullptr; }
    const std::vector<DescribedLight> &lights() const { return all_lights; }
    const std::vector<Placement> &placements() const { return placed; }
    const std::vector<Medium> &media() const { return interiors; }

    /// Another one whenever light, or what it falls on, has changed. Cameras and imagers do not count.
    Revision revision() const { return {placed.size(), light_changes}; }

    /// The files to write: those whose blocks are open, outermost first; without an open block of a file, the one that
    /// was made last.
    std::vector<FileImager> writing_imagers() const;

    /// Those of the innermost open block of settings; without one, those that were made last; else the defaults.
    Settings settings() const;

    /// Reports every other block that is open.
    void report_open_blocks(const CallReport &call) const;

    /// Reports what has no effect on the picture, to a pass that shows light or does not.
    void report_unused(bool shows_light) const { usage.tell(all_lights, shows_light, report); }

  private:
    struct Entry {
        EntityKind kind;
        int index; // among the entities of its kind; -1 if nothing came of it, which has been reported
    };
    struct TransformBlock {
        VtTransform world_from_local;
        bool is_usable;
    };

    bool is_placeable() const { return transforms.empty() || transforms.back().is_usable; }
    VtTransform current_transform() const;

    // The index of a new entity among those of its kind; -1 if nothing came of it.
    int made(VtLong id, EntityKind kind, const char *type_name, const VtArgList &list, const CallReport &call);

    // Checks that a camera or light can stand at its position under the current transform; reports if it is too far.
    bool check_reach(const Parameters &parameters, const CallReport &call) const;

    // The index of an entity of that kind; -1, reported if there never was such an id.
    int find(VtLong id, EntityKind kind, const CallReport &call) const;

    // Likewise, of an id that the parameter is or holds.
    int find(VtLong id, EntityKind kind, const Parameters &parameters, std::string_view name,
             const CallReport &call) const;

    // What is wrong with an id that should be of that kind; empty if nothing is.
    std::string why_wrong(VtLong id, EntityKind kind) const;

    // The pattern whose id a parameter is; null, reported, if it is none.
    const Pattern *find_pattern(const Parameters &parameters, std::string_view name, const CallReport &call) const;

    // Nothing if there is nothing to see of it, which has been reported.
    std::optional<Object> find_object(VtLong id, const Type &type, const Parameters &parameters,
                                      const CallReport &call) const;

    // Nothing if its interface is none, which has been reported.
    std::optional<Material> find_material(const Type &type, const Parameters &parameters, const CallReport &call) const;

    Report &report;
    VtLong last_id = 0;
    std::unordered_map<VtLong, Entry> entries;

    std::optional<Camera> current_camera;
    std::vector<Imager> imagers;
    std::vector<BsdfDescription> interfaces;
    std::vector<Medium> interiors;
    std::vector<DescribedLight> all_lights;
    TextureFiles texture_files;
    std::vector<TextureFile *> textures;
    // Placements, materials and patterns point to these; a deque moves none of its elements.
    std::deque<Pattern> patterns;
    std::deque<Material> materials;
    std::deque<Object> objects;
    std::deque<Trimmer> trimmers;
    const Material material_of_others = default_material();
    std::vector<Placement> placed;
    int current_area_light = -1; // created or switched on last
    unsigned long light_changes = 0;
    Usage usage;

    // Open blocks, innermost last; indexes as in Entry.
    std::vector<int> imager_blocks;
    std::vector<int> interior_blocks;
    std::vector<int> light_blocks;
    std::vector<int> material_blocks;
    std::vector<TransformBlock> transforms;
};

} // namespace vantor
