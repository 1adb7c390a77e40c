// Usage: what of a description is used, and what has no effect on the picture.
#pragma once

#include "libvantor/description/light.h"
#include "libvantor/description/material.h"
#include "libvantor/description/object.h"

#include <vector>

namespace vantor {

/// Objects, materials and lights, by their indices among the entities of their kind. None of what it tells is a
/// mistake: a scene may be rendered while it grows.
class Usage {
  public:
    void note_made(EntityKind kind, int index, VtLong id);
    void note_used(EntityKind kind, int index);

    /// Looks at a material, which may be -1 for none, on an object that is added.
    void note_added(const Object &object, int material_index, const Material &material);

    /// One line for each kind of thing that has no effect. Whether no light is on is of no interest to a pass that
    /// shows none.
    void tell(const std::vector<DescribedLight> &lights, bool shows_light, const Report &report) const;

  private:
    struct Use {
        VtLong id = 0; // 0 for what is of no interest
        bool is_used = false;
    };
    using Uses = std::vector<Use>;

    Uses *of(EntityKind kind);

    Uses objects;
    Uses materials;
    Uses lights;
    long open_glass = 0; // objects
    VtLong first_open_object = 0;
    VtLong first_open_material = 0;
};

} // namespace vantor
