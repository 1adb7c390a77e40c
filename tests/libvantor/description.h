// Description: a described scene for tests that look inside.
#pragma once

#include "libvantor/description/registry.h"
#include "tests/libvantor/scripted_scene.h"

namespace scripted {

/// A scene behind its interface: what the rooms work on.
class Description {
  public:
    explicit Description(double reflectance = 0.5) {
        registry.begin_material(make(vantor::EntityKind::Material, "diffuse", "reflectance", reflectance));
    }
    /// An entity of that kind and type; returns its id.
    template <class... Values> VtLong make(vantor::EntityKind kind, const char *type, const Values &...values) {
        List list(values...);
        const VtLong id = registry.take_id();
        registry.create(id, kind, type, list);
        return id;
    }
    template <class... Values> void place(const char *type, const Values &...values) {
        registry.add_object(make(vantor::EntityKind::Object, type, values...));
    }
    void quad(const VtVector3 &origin, const VtVector3 &edge_u, const VtVector3 &edge_v) {
        place("quad", "origin", origin, "edge_u", edge_u, "edge_v", edge_v);
    }
    void box() { place("box"); }
    /// Of 2 * side * side triangles.
    void sheet(int side) {
        Points points;
        Indices triangles;
        fill_with_sheet(side, points, triangles);
        place("mesh", "points", points, "triangles", triangles);
    }

    vantor::Report report;
    vantor::Registry registry{report};
};

} // namespace scripted
