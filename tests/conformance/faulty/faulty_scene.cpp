// VtLocalSceneProxy of the faulty libVantor.
#include "fault.h"
#include "renderer/vt_local_scene_proxy.h"

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

struct Scene {
    VtLong last_id = 0;
    const VtInstanceArray<VtVector3> *points = nullptr;
    const VtTransform *transform = nullptr;
    const char *texture = nullptr;
};

thread_local Scene *scene_of_this_thread = nullptr;

// Reads an array as NewObject does.
void read(const VtInstanceArray<VtVector3> &points) {
    const auto add = [](const VtVector3 *elements, VtLong count) {
        for (VtLong i = 0; i < count; ++i)
            sink = sink + elements[i][0];
    };
    const auto *first = points.FirstBlock();
    if (has("array is read by its first block"))
        add(first ? first->data : nullptr, first ? std::min(first->count, points.Size()) : 0);
    else if (has("array is read as one block"))
        add(first ? first->data : nullptr, first ? points.Size() : 0);
    else if (has("size of an array is allocated"))
        add(std::vector<VtVector3>(static_cast<std::size_t>(points.Size())).data(), 0);
    else if (has("size of an array is trusted"))
        for (VtLong left = points.Size(); left > 0; first = first->next) {
            add(first->data, std::min(first->count, left));
            left -= first->count;
        }
    else
        points.ForEachBlock(add);
}

// What an unlucky order of destruction at the end of a process does.
struct AtTheEnd {
    ~AtTheEnd() {
        if (has("process ends badly"))
            std::abort();
    }
} at_the_end;

VtLong create(void *record) { return ++static_cast<Scene *>(record)->last_id; }

} // namespace

VtLocalSceneProxy::VtLocalSceneProxy(VtLong number) : record(new Scene) {
    scene_of_this_thread = static_cast<Scene *>(record);
    if (has("scene's number is allocated"))
        sink = static_cast<double>(std::vector<char>(static_cast<std::size_t>(std::min(number, 10240))).size());
    if (has("scene writes beyond its room"))
        write_at(this, sizeof *this);
    if (has("slots are swapped")) {
        static void *table[27];
        void **&own = *reinterpret_cast<void ***>(this);
        std::memcpy(table, own, sizeof table);
        std::swap(table[2], table[3]);
        own = table;
    }
}
VtLocalSceneProxy::~VtLocalSceneProxy() {
    if (!has("scene leaks"))
        delete static_cast<Scene *>(record);
}
VtLong VtLocalSceneProxy::NewCamera(const char *type, VtArgList &) {
    if (has("type is never null"))
        sink = static_cast<double>(std::strlen(type));
    return create(record);
}
VtLong VtLocalSceneProxy::NewImager(const char *, VtArgList &) {
    if (has("NewImager calls _exit"))
        _exit(0);
    return create(record);
}
VtLong VtLocalSceneProxy::NewInterface(const char *, VtArgList &) { return create(record); }
VtLong VtLocalSceneProxy::NewInterior(const char *, VtArgList &parameters) {
    // Expects a name first.
    if (parameters.Count() > 0 && parameters.At(0).Tag() != VtArgTag::Text && has("values without names abort"))
        std::abort();
    return create(record);
}
VtLong VtLocalSceneProxy::NewLight(const char *, VtArgList &parameters) {
    if (parameters.Count() > 0 && has("a list that is not empty aborts"))
        std::abort();
    return create(record);
}
VtLong VtLocalSceneProxy::NewMaterial(const char *, VtArgList &parameters) {
    if (parameters.Count() % 2 != 0 && has("an odd number of values throws"))
        throw std::invalid_argument("a value is missing");
    return create(record);
}
VtLong VtLocalSceneProxy::NewObject(const char *, VtArgList &parameters) {
    for (VtLong i = 0; i < parameters.Count(); ++i)
        if (parameters.At(i).Tag() == VtArgTag::Vector3Array) {
            read(parameters.At(i).Vector3Array());
            static_cast<Scene *>(record)->points = &parameters.At(i).Vector3Array();
        }
    if (has("what is created leaks"))
        lost = std::malloc(40);
    return create(record);
}
VtLong VtLocalSceneProxy::NewPattern(const char *, VtArgList &parameters) {
    if (has("texts are changed") && parameters.Count() > 0 && parameters.At(0).Tag() == VtArgTag::Text)
        write_at(const_cast<char *>(parameters.At(0).Text()), 0);
    return create(record);
}
VtLong VtLocalSceneProxy::NewTexture(const char *type) {
    static_cast<Scene *>(record)->texture = type;
    return create(record);
}
VtLong VtLocalSceneProxy::NewTrimmer(const char *, VtArgList &) { return create(record); }
void VtLocalSceneProxy::ImagerBegin(VtLong) {}
void VtLocalSceneProxy::ImagerEnd() {
    if (has("ImagerEnd calls exit"))
        std::exit(0);
}
void VtLocalSceneProxy::InteriorBegin(VtLong) {}
void VtLocalSceneProxy::InteriorEnd() {
    if (has("InteriorEnd throws"))
        throw 1;
}
void VtLocalSceneProxy::LightOn(VtLong) {}
void VtLocalSceneProxy::LightOff(VtLong) {}
void VtLocalSceneProxy::LightBegin() {}
void VtLocalSceneProxy::LightEnd() {}
void VtLocalSceneProxy::MaterialBegin(VtLong) {}
void VtLocalSceneProxy::MaterialEnd() {}
void VtLocalSceneProxy::AddObject(VtLong id) {
    static const double objects[10] = {};
    if (has("AddObject indexes with the id"))
        sink = *(static_cast<const volatile double *>(objects) + id);
    if (has("scene belongs to a thread"))
        sink = static_cast<volatile Scene *>(scene_of_this_thread)->last_id;
}
void VtLocalSceneProxy::TransformBegin(const VtTransform &transform) {
    static_cast<Scene *>(record)->transform = &transform;
}
void VtLocalSceneProxy::TransformEnd() {
    if (has("transform is kept") && static_cast<Scene *>(record)->transform)
        sink = (*static_cast<Scene *>(record)->transform)[0][0];
}
void VtLocalSceneProxy::Radiosity() {
    if (has("Radiosity hangs"))
        hang();
}
void VtLocalSceneProxy::Render(VtLong width, VtLong height, VtLong, double, double, double, double) {
    if (has("Render divides by its width"))
        sink = 100 % width;
    if (has("Render allocates its pixels"))
        sink = static_cast<double>(std::vector<char>(static_cast<std::size_t>(width) * height).size());
    if (has("type is kept") && static_cast<Scene *>(record)->texture)
        sink = *static_cast<Scene *>(record)->texture;
    if (has("array is kept") && static_cast<Scene *>(record)->points)
        read(*static_cast<Scene *>(record)->points);
}
