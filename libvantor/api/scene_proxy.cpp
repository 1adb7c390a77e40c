// VtLocalSceneProxy: the entry points of the interface. They forward to the registry and to the passes.
#include "renderer/vt_local_scene_proxy.h"

#include "libvantor/base/threads.h"
#include "libvantor/passes/render.h"
#include "libvantor/radiosity/radiosity.h"

#include <new>

using vantor::EntityKind;
using vantor::Radiosity;
using vantor::Registry;
using vantor::Report;

namespace {

// What a proxy's record is.
struct Scene {
    explicit Scene(VtLong patches) : radiosity(patches) {}

    Report report;
    Registry registry{report};
    vantor::WorldCache worlds;
    Radiosity radiosity;
};

// The guard of every entry point: exceptions become messages, and the script goes on.
template <class Work> void enter(void *record, const char *call, Work work) noexcept {
    if (!record) {
        vantor::report_out_of_memory("the scene could not be made");
        return;
    }
    Scene &scene = *static_cast<Scene *>(record);
    try {
        try {
            work(scene);
        } catch (const std::bad_alloc &) {
            throw;
        } catch (const std::exception &error) {
            scene.report.diagnostic(vantor::joined({call, ": ", error.what()}));
        }
    } catch (...) {
        vantor::report_out_of_memory(call);
    }
}

// For what may need more stack than a thread of the script has, and threads of its own.
template <class Work> void enter_pass(void *record, const char *call, Work work) noexcept {
    enter(record, call, [&](Scene &scene) {
        vantor::with_enough_stack([&] {
            const vantor::Workers workers;
            work(scene);
        });
    });
}

VtLong create(void *record, EntityKind kind, const char *type, const VtArgList &parameters) noexcept {
    VtLong id = 0;
    enter(record, vantor::names_of(kind).call.data(), [&](Scene &scene) {
        id = scene.registry.take_id();
        scene.registry.create(id, kind, type, parameters);
    });
    return id;
}

} // namespace

// The number is the budget of patches of a radiosity pass.
VtLocalSceneProxy::VtLocalSceneProxy(VtLong patches) : record(nullptr) {
    try {
        record = new Scene(patches);
    } catch (...) {
        vantor::report_out_of_memory("the scene could not be made");
    }
}

VtLocalSceneProxy::~VtLocalSceneProxy() { delete static_cast<Scene *>(record); }

VtLong VtLocalSceneProxy::NewCamera(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Camera, type, parameters);
}
VtLong VtLocalSceneProxy::NewImager(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Imager, type, parameters);
}
VtLong VtLocalSceneProxy::NewInterface(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Interface, type, parameters);
}
VtLong VtLocalSceneProxy::NewInterior(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Interior, type, parameters);
}
VtLong VtLocalSceneProxy::NewLight(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Light, type, parameters);
}
VtLong VtLocalSceneProxy::NewMaterial(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Material, type, parameters);
}
VtLong VtLocalSceneProxy::NewObject(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Object, type, parameters);
}
VtLong VtLocalSceneProxy::NewPattern(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Pattern, type, parameters);
}
VtLong VtLocalSceneProxy::NewTexture(const char *type) {
    return create(record, EntityKind::Texture, type, VtArgList(0, 0));
}
VtLong VtLocalSceneProxy::NewTrimmer(const char *type, VtArgList &parameters) {
    return create(record, EntityKind::Trimmer, type, parameters);
}

void VtLocalSceneProxy::ImagerBegin(VtLong id) {
    enter(record, "imagerBegin", [=](Scene &scene) { scene.registry.begin_imager(id); });
}
void VtLocalSceneProxy::ImagerEnd() {
    enter(record, "imagerEnd", [](Scene &scene) { scene.registry.end_imager(); });
}
void VtLocalSceneProxy::InteriorBegin(VtLong id) {
    enter(record, "interiorBegin", [=](Scene &scene) { scene.registry.begin_interior(id); });
}
void VtLocalSceneProxy::InteriorEnd() {
    enter(record, "interiorEnd", [](Scene &scene) { scene.registry.end_interior(); });
}
void VtLocalSceneProxy::LightOn(VtLong id) {
    enter(record, "lightOn", [=](Scene &scene) { scene.registry.switch_light(id, true); });
}
void VtLocalSceneProxy::LightOff(VtLong id) {
    enter(record, "lightOff", [=](Scene &scene) { scene.registry.switch_light(id, false); });
}
void VtLocalSceneProxy::LightBegin() {
    enter(record, "lightBegin", [](Scene &scene) { scene.registry.begin_light(); });
}
void VtLocalSceneProxy::LightEnd() {
    enter(record, "lightEnd", [](Scene &scene) { scene.registry.end_light(); });
}
void VtLocalSceneProxy::MaterialBegin(VtLong id) {
    enter(record, "materialBegin", [=](Scene &scene) { scene.registry.begin_material(id); });
}
void VtLocalSceneProxy::MaterialEnd() {
    enter(record, "materialEnd", [](Scene &scene) { scene.registry.end_material(); });
}

void VtLocalSceneProxy::AddObject(VtLong id) {
    enter(record, "addObject", [=](Scene &scene) { scene.registry.add_object(id); });
}
void VtLocalSceneProxy::TransformBegin(const VtTransform &transform) {
    enter(record, "transformBegin", [&](Scene &scene) { scene.registry.begin_transform(transform); });
}
void VtLocalSceneProxy::TransformEnd() {
    enter(record, "transformEnd", [](Scene &scene) { scene.registry.end_transform(); });
}

void VtLocalSceneProxy::Radiosity() {
    enter_pass(record, "radiosity", [](Scene &scene) {
        scene.report.print_counts();
        scene.radiosity.pass(scene.registry, scene.worlds, scene.report);
    });
}
void VtLocalSceneProxy::Render(VtLong width, VtLong height, VtLong samples, double x0, double y0, double x1,
                               double y1) {
    enter_pass(record, "render", [=](Scene &scene) {
        scene.report.print_counts();
        vantor::render({width, height, samples, x0, y0, x1, y1}, scene.registry, scene.worlds,
                       scene.radiosity.result(scene.registry, scene.report), scene.report);
    });
}
