// VtLocalSceneProxy of the recording libVantor.
#include "call.h"
#include "content.h"
#include "renderer/vt_local_scene_proxy.h"

using recording::Call;

namespace {

/// What a proxy's record points to.
struct Scene {
    int serial;
    VtLong last_id = 0;
};

/// An operation's line, begun with the scene's serial number.
Call operation(const char *name, void *record) {
    Call call(name);
    call.with("object", static_cast<Scene *>(record)->serial);
    return call;
}

void act(const char *name, void *record) { operation(name, record).done(); }

void act(const char *name, void *record, VtLong id) { operation(name, record).with("id", id).done(); }

VtLong create(Call &call, void *record) {
    const VtLong id = recording::id_or(++static_cast<Scene *>(record)->last_id);
    call.with("result", id).done();
    return id;
}

VtLong create(const char *name, void *record, const char *type) {
    Call call = operation(name, record);
    call.with("type", type);
    return create(call, record);
}

VtLong create(const char *name, void *record, const char *type, const VtArgList &list) {
    Call call = operation(name, record);
    call.with("type", type).with("list", content(list).serial).with("count", list.Count());
    return create(call, record);
}

} // namespace

VtLocalSceneProxy::VtLocalSceneProxy(VtLong number) {
    const int serial = recording::new_serial();
    Call("VtLocalSceneProxy").with("object", serial).with("number", number).done();
    record = new Scene{serial};
}

VtLocalSceneProxy::~VtLocalSceneProxy() {
    auto *scene = static_cast<Scene *>(record);
    Call("~VtLocalSceneProxy").with("object", scene->serial).done_without_fault();
    delete scene;
}

VtLong VtLocalSceneProxy::NewCamera(const char *t, VtArgList &p) { return create("NewCamera", record, t, p); }
VtLong VtLocalSceneProxy::NewImager(const char *t, VtArgList &p) { return create("NewImager", record, t, p); }
VtLong VtLocalSceneProxy::NewInterface(const char *t, VtArgList &p) { return create("NewInterface", record, t, p); }
VtLong VtLocalSceneProxy::NewInterior(const char *t, VtArgList &p) { return create("NewInterior", record, t, p); }
VtLong VtLocalSceneProxy::NewLight(const char *t, VtArgList &p) { return create("NewLight", record, t, p); }
VtLong VtLocalSceneProxy::NewMaterial(const char *t, VtArgList &p) { return create("NewMaterial", record, t, p); }
VtLong VtLocalSceneProxy::NewObject(const char *t, VtArgList &p) { return create("NewObject", record, t, p); }
VtLong VtLocalSceneProxy::NewPattern(const char *t, VtArgList &p) { return create("NewPattern", record, t, p); }
VtLong VtLocalSceneProxy::NewTexture(const char *t) { return create("NewTexture", record, t); }
VtLong VtLocalSceneProxy::NewTrimmer(const char *t, VtArgList &p) { return create("NewTrimmer", record, t, p); }

void VtLocalSceneProxy::ImagerBegin(VtLong id) { act("ImagerBegin", record, id); }
void VtLocalSceneProxy::ImagerEnd() { act("ImagerEnd", record); }
void VtLocalSceneProxy::InteriorBegin(VtLong id) { act("InteriorBegin", record, id); }
void VtLocalSceneProxy::InteriorEnd() { act("InteriorEnd", record); }
void VtLocalSceneProxy::LightOn(VtLong id) { act("LightOn", record, id); }
void VtLocalSceneProxy::LightOff(VtLong id) { act("LightOff", record, id); }
void VtLocalSceneProxy::LightBegin() { act("LightBegin", record); }
void VtLocalSceneProxy::LightEnd() { act("LightEnd", record); }
void VtLocalSceneProxy::MaterialBegin(VtLong id) { act("MaterialBegin", record, id); }
void VtLocalSceneProxy::MaterialEnd() { act("MaterialEnd", record); }

void VtLocalSceneProxy::AddObject(VtLong id) { act("AddObject", record, id); }
void VtLocalSceneProxy::TransformBegin(const VtTransform &transform) {
    operation("TransformBegin", record)
        .with("value", transform)
        .with("address", static_cast<const void *>(&transform))
        .done();
}
void VtLocalSceneProxy::TransformEnd() { act("TransformEnd", record); }

void VtLocalSceneProxy::Radiosity() { act("Radiosity", record); }
void VtLocalSceneProxy::Render(VtLong width, VtLong height, VtLong samples, double x0, double y0, double x1,
                               double y1) {
    operation("Render", record)
        .with("width", width)
        .with("height", height)
        .with("samples", samples)
        .with("x0", x0)
        .with("y0", y0)
        .with("x1", x1)
        .with("y1", y1)
        .done();
}
