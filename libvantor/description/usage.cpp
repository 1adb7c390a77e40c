// Usage: what of a description is used, and what has no effect on the picture.
#include "libvantor/description/usage.h"

namespace vantor {

namespace {

// Whether it encloses nothing, so that light that enters it never leaves. Of larger meshes that is not looked for: it
// would take long, and several of them may enclose a body together. Every shape is listed: a new one has to decide.
struct IsOpen {
    bool operator()(const TriangleMesh &mesh) const { return primitives_of(mesh) < 4; }
    bool operator()(const Quads &quads) const { return primitives_of(quads) < 6; }
    bool operator()(const Disk &) const { return true; }
    bool operator()(const Cone &cone) const { return !cone.is_closed; }
    bool operator()(const Curves &curves) const { return !curves.are_tubes; }
    bool operator()(const Sphere &) const { return false; }
    bool operator()(const Torus &) const { return false; }
    bool operator()(const Points &) const { return false; }
};

bool is_open(const Object &object) { return !object.trimmers.empty() || std::visit(IsOpen(), object.shape); }

bool is_shining(const DescribedLight &light, bool is_carried) {
    if (!light.is_on)
        return false;
    return light.is_area() ? is_carried && !is_black(*light.area_radiance) : !light.lights.empty();
}

} // namespace

Usage::Uses *Usage::of(EntityKind kind) {
    switch (kind) {
    case EntityKind::Object:
        return &objects;
    case EntityKind::Material:
        return &materials;
    case EntityKind::Light:
        return &lights;
    default:
        return nullptr;
    }
}

void Usage::note_made(EntityKind kind, int index, VtLong id) {
    Uses *uses = of(kind);
    if (!uses || index < 0)
        return;
    const auto place = static_cast<std::size_t>(index);
    uses->resize(std::max(uses->size(), place + 1));
    (*uses)[place].id = id;
}

void Usage::note_used(EntityKind kind, int index) {
    if (Uses *uses = of(kind); uses && index >= 0)
        (*uses)[static_cast<std::size_t>(index)].is_used = true;
}

void Usage::note_added(const Object &object, int material_index, const Material &material) {
    note_used(EntityKind::Material, material_index);
    if (material_index < 0 || !transmits(material.bsdf) || !is_open(object))
        return;
    if (open_glass++ == 0) {
        first_open_object = object.id;
        first_open_material = materials[static_cast<std::size_t>(material_index)].id;
    }
}

void Usage::tell(const std::vector<DescribedLight> &described, bool shows_light, const Report &report) const {
    const auto say = [&](std::string_view noun, const Uses &uses, const auto &counts, std::string_view what) {
        long unused = 0;
        VtLong first = 0;
        for (std::size_t i = 0; i < uses.size(); ++i)
            if (uses[i].id > 0 && !uses[i].is_used && counts(i) && unused++ == 0)
                first = uses[i].id;
        const std::string id = joined({noun, " ", std::to_string(first)});
        if (unused == 1)
            report.note(joined({"render: ", id, " ", what}));
        else if (unused > 1)
            report.note(joined({"render: each of ", counted(unused, noun), " ", what, "; the first of them is ", id}));
    };
    const auto all = [](std::size_t) { return true; };

    bool is_lit = false;
    for (std::size_t i = 0; i < described.size(); ++i)
        is_lit |= is_shining(described[i], i < lights.size() && lights[i].is_used);
    if (shows_light && !is_lit)
        report.note("render: no light reaches anything, so that only black is seen (newLight makes a light)");
    say("object", objects, all, "is never added to the scene");
    say("material", materials, all, "is never used: nothing is added in its block");
    say(
        "light", lights, [&](std::size_t i) { return described[i].is_area() && described[i].is_on; },
        "lights nothing: nothing is added in its block");
    if (open_glass > 0)
        report.note(joined({"render: material ", std::to_string(first_open_material),
                            " is glass, and needs a closed body; object ", std::to_string(first_open_object),
                            open_glass == 1 ? " is open"
                                            : joined({" is open, and so are ", std::to_string(open_glass - 1),
                                                      " more that are made of glass"})}));
}

} // namespace vantor
