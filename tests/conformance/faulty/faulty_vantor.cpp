// A libVantor with one mistake, which VANTOR_FAULT names: what the conformance program must find. Without a name it
// keeps the contract.
#include "renderer/vt_bases.h"
#include "renderer/vt_local_scene_proxy.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <numbers>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

bool has(const char *fault) {
    const char *asked = std::getenv("VANTOR_FAULT");
    return asked && std::strcmp(asked, fault) == 0;
}

// Writes a byte, where the compiler does not see that it lies outside of the object.
[[gnu::noinline]] void write_at(void *object, std::size_t offset) { static_cast<volatile char *>(object)[offset] = 0; }

// What is read goes here, so that it is read; and what is allocated and never freed.
volatile double sink;
void *volatile lost;

// A value: its tag, and from byte 8 on what it holds; of arrays and texts a pointer.

template <class Value> Value &held(const VtArgType &value) {
    return *reinterpret_cast<Value *>(reinterpret_cast<unsigned char *>(const_cast<VtArgType *>(&value)) + 8);
}

template <class Value> void hold(VtArgType *value, VtArgTag tag, const Value &what) {
    new (value) VtArgTag(tag);
    std::memcpy(&held<Value>(*value), &what, sizeof what);
    if (has("value writes beyond its room"))
        write_at(value, sizeof(VtArgType));
    if (has("value leaks"))
        lost = std::malloc(40);
}

void hold_text(VtArgType *value, char *text) {
    static char shared[200000];
    if (has("texts share a buffer"))
        text = std::strncpy(shared, text, sizeof shared - 1);
    hold(value, VtArgTag::Text, text);
    if (has("texts are cut")) {
        char *cut = &held<char>(*value) + 8;
        std::strncpy(cut, text, 15);
        cut[15] = 0;
    }
}

const char *text_of(const VtArgType &value) {
    return has("texts are cut") ? &held<char>(value) + 8 : held<const char *>(value);
}

template <class T> void hold_array(VtArgType *value, VtArgTag tag, const VtInstanceArray<T> &array) {
    const VtInstanceArray<T> *kept = &array;
    static VtInstanceArray<T> copy;
    if (has("array is copied by its first block") && array.FirstBlock() && array.Size() > 0) {
        copy.SetSize(0);
        for (VtLong i = 0; i < std::min(array.FirstBlock()->count, array.Size()); ++i)
            copy.Add(array.FirstBlock()->data[i]);
        kept = &copy;
    }
    if (has("array of negative size is taken for an empty one") && array.Size() < 0) {
        copy.SetSize(0);
        kept = &copy;
    }
    hold(value, tag, kept);
}

// A list: a vector of copies.

using Values = std::vector<VtArgType>;
static_assert(sizeof(Values) <= sizeof(VtArgList));
Values shared_values;
Values &values_of(const VtArgList &list) {
    return has("lists share their storage") ? shared_values
                                            : *reinterpret_cast<Values *>(const_cast<VtArgList *>(&list));
}

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

[[noreturn]] void hang() {
    for (;;)
        pause();
}

VtLong create(void *record) { return ++static_cast<Scene *>(record)->last_id; }

} // namespace

#define BY_VALUE(type, result, name)                                                                                   \
    VtArgType::VtArgType(type value) { hold(this, VtArgTag::name, value); }                                            \
    result VtArgType::name() const { return held<type>(*this); }
#define BY_REFERENCE(type, name)                                                                                       \
    VtArgType::VtArgType(const VtInstanceArray<type> &array) { hold_array(this, VtArgTag::name, array); }              \
    const VtInstanceArray<type> &VtArgType::name() const { return *held<const VtInstanceArray<type> *>(*this); }
BY_VALUE(VtLong, VtLong, Long)
BY_VALUE(double, double, Double)
BY_VALUE(VtVector2, const VtVector2 &, Vector2)
BY_VALUE(VtVector3, const VtVector3 &, Vector3)
BY_VALUE(VtVector4, const VtVector4 &, Vector4)
BY_VALUE(VtMatrix2, const VtMatrix2 &, Matrix2)
BY_VALUE(VtMatrix3, const VtMatrix3 &, Matrix3)
BY_VALUE(VtMatrix4, const VtMatrix4 &, Matrix4)
BY_VALUE(VtTransform, const VtTransform &, Transform)
BY_REFERENCE(VtLong, LongArray)
BY_REFERENCE(double, DoubleArray)
BY_REFERENCE(VtVector2, Vector2Array)
BY_REFERENCE(VtVector3, Vector3Array)
BY_REFERENCE(VtVector4, Vector4Array)
BY_REFERENCE(VtMatrix2, Matrix2Array)
BY_REFERENCE(VtMatrix3, Matrix3Array)
BY_REFERENCE(VtMatrix4, Matrix4Array)
BY_REFERENCE(VtTransform, TransformArray)
VtArgType::VtArgType(char *text) { hold_text(this, text); }
const char *VtArgType::Text() const { return text_of(*this); }
VtArgType::VtArgType(const VtArgType &other) { std::memcpy(inside, other.inside, sizeof inside); }
VtArgType::~VtArgType() = default;
VtArgTag VtArgType::Tag() const {
    const auto tag = *reinterpret_cast<const VtArgTag *>(inside);
    return has("tag is wrong") && tag == VtArgTag::Matrix3 ? VtArgTag::Matrix4 : tag;
}

VtArgList::VtArgList(VtLong, VtLong) {
    new (inside) Values;
    shared_values.clear();
    if (has("list writes beyond its room"))
        write_at(this, sizeof(VtArgList));
}
VtArgList::~VtArgList() {
    if (has("list reads texts when destroyed") && Count() > 0 && At(0).Tag() == VtArgTag::Text)
        sink = static_cast<double>(std::strlen(At(0).Text()));
    if (!has("list leaks"))
        reinterpret_cast<Values *>(inside)->~Values();
}
void VtArgList::Add(const VtArgType &value) {
    Values &values = values_of(*this);
    if (has("list holds 100 values") && values.size() == 100)
        return;
    values.push_back(value);
}
VtLong VtArgList::Count() const { return static_cast<VtLong>(values_of(*this).size()); }
const VtArgType &VtArgList::At(VtLong i) const {
    return values_of(*this)[static_cast<std::size_t>(has("list is reversed") ? Count() - 1 - i : i)];
}

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

namespace {

VtTransform diagonal(double a, double b, double c) {
    VtTransform t;
    t[0][0] = a;
    t[1][1] = b;
    t[2][2] = c;
    t[3][3] = 1;
    return t;
}

VtTransform rotation(int axis, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    VtTransform t = diagonal(1, 1, 1);
    const int i = (axis + 1) % 3;
    const int j = (axis + 2) % 3;
    t[i][i] = t[j][j] = c;
    t[i][j] = s;
    t[j][i] = -s;
    return t;
}

} // namespace

void VtTransform::Zero() { *this = has("Zero is the identity") ? diagonal(1, 1, 1) : VtTransform(); }
void VtTransform::Identity() {
    const double old = matrix[0][0];
    *this = has("Identity is zero") ? VtTransform() : diagonal(1, 1, 1);
    if (has("Identity reads an old entry"))
        matrix[0][0] += 0 * old;
    if (has("Identity writes beyond its room"))
        write_at(this, sizeof *this);
}
void VtTransform::Scaling(const VtVector3 &s) {
    const double left = matrix[0][1];
    *this = has("Scaling is uniform") ? diagonal(s[0], s[0], s[0]) : diagonal(s[0], s[1], s[2]);
    if (has("Scaling leaves an entry"))
        matrix[0][1] = left;
}
void VtTransform::Translation(const VtVector3 &o) {
    const double sign = has("Translation goes back") ? -1 : 1;
    Identity();
    matrix[3] = {sign * o[0], sign * o[1], sign * o[2], 1};
}
void VtTransform::AlignmentToZ(const VtVector3 &direction) {
    Identity();
    if (has("AlignmentToZ of a zero direction is NaN"))
        matrix[2][2] = direction.Length() / direction.Length();
}
void VtTransform::AlignmentTo(const VtVector3 &, const VtVector3 &) { Identity(); }
void VtTransform::RotationAroundX(double angle) {
    *this = rotation(0, angle);
    if (has("RotationAroundX shears"))
        matrix[2][1] = 0;
}
void VtTransform::RotationAroundY(double angle) {
    *this = rotation(has("RotationAroundY turns around X") ? 0 : 1, has("RotationAroundY turns back") ? -angle : angle);
}
void VtTransform::RotationAroundZ(double angle) {
    if (has("RotationAroundZ hangs") && std::isinf(angle))
        hang();
    *this = has("RotationAroundZ is the identity") ? diagonal(1, 1, 1) : rotation(2, angle);
    if (has("RotationAroundZ reflects"))
        matrix[2][2] = -1;
}
void VtTransform::RotationAroundAxis(const VtVector3 &point, const VtVector3 &direction, double angle) {
    VtVector3 k = direction;
    k.Normalize();
    if (has("RotationAroundAxis takes degrees"))
        angle *= std::numbers::pi / 180;
    Identity();
    if (k.SqLength() == 0)
        return;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int l = (i + 2) % 3;
        matrix[i][i] = c + (1 - c) * k[i] * k[i];
        matrix[i][j] = (1 - c) * k[i] * k[j] + s * k[l];
        matrix[i][l] = (1 - c) * k[i] * k[l] - s * k[j];
    }
    for (int j = 0; j < 3; ++j)
        matrix[3][j] = point[j] - (point[0] * matrix[0][j] + point[1] * matrix[1][j] + point[2] * matrix[2][j]);
}
void VtTransform::ReflectionOnXY() {
    *this = has("ReflectionOnXY reflects X") ? diagonal(-1, 1, 1) : diagonal(1, 1, -1);
}

VtMatrix4 VtBezierBasis() {
    static double calls = 0;
    VtMatrix4 basis;
    basis[0][0] = has("basis changes") ? ++calls : 1;
    return basis;
}
VtMatrix4 VtBSplineBasis() {
    VtMatrix4 basis;
    basis[1][2] = has("basis is NaN") ? std::numeric_limits<double>::quiet_NaN() : 1;
    return basis;
}
VtMatrix4 VtCatmullRomBasis() { return {}; }
VtMatrix4 VtHermiteBasis() { return {}; }
