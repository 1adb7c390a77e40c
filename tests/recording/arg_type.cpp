// VtArgType of the recording libVantor.
#include "call.h"
#include "content.h"

#include <new>

Places places;

namespace {

constexpr const char *tag_names[] = {
    "Long",         "Double",       "Text",         "Vector2",      "Vector3",        "Vector4",      "Matrix2",
    "Matrix3",      "Matrix4",      "Transform",    "LongArray",    "DoubleArray",    "Vector2Array", "Vector3Array",
    "Vector4Array", "Matrix2Array", "Matrix3Array", "Matrix4Array", "TransformArray",
};
static_assert(std::size(tag_names) == std::variant_size_v<Value>);

bool copying_for_a_list = false;

void add_value(recording::Call &call, const char *text) {
    call.with("value", text).with("address", static_cast<const void *>(text));
}
template <class T> void add_value(recording::Call &call, const VtInstanceArray<T> *array) { call.with_array(*array); }
template <class T> void add_value(recording::Call &call, const T &value) { call.with("value", value); }

using Pointer = const ValueContent *;

void construct(unsigned char *inside, const Value &value) {
    const int serial = recording::new_serial();
    recording::Call call("VtArgType", ++places.made);
    call.with("object", serial).with("tag", tag_names[value.index()]);
    std::visit([&](const auto &alternative) { add_value(call, alternative); }, value);
    call.done();
    new (inside) Pointer(new ValueContent{serial, value});
}

template <class T> const T &get(const VtArgType &value) { return std::get<T>(content(value).value); }
template <class T> const VtInstanceArray<T> &get_array(const VtArgType &value) {
    return *get<const VtInstanceArray<T> *>(value);
}

} // namespace

const ValueContent &content(const VtArgType &value) { return **reinterpret_cast<const Pointer *>(&value); }

std::unique_ptr<VtArgType> unrecorded_copy(const VtArgType &value) {
    copying_for_a_list = true;
    auto copy = std::make_unique<VtArgType>(value);
    copying_for_a_list = false;
    return copy;
}

VtArgType::VtArgType(VtLong value) { construct(inside, value); }
VtArgType::VtArgType(double value) { construct(inside, value); }
VtArgType::VtArgType(char *value) { construct(inside, static_cast<const char *>(value)); }
VtArgType::VtArgType(VtVector2 value) { construct(inside, value); }
VtArgType::VtArgType(VtVector3 value) { construct(inside, value); }
VtArgType::VtArgType(VtVector4 value) { construct(inside, value); }
VtArgType::VtArgType(VtMatrix2 value) { construct(inside, value); }
VtArgType::VtArgType(VtMatrix3 value) { construct(inside, value); }
VtArgType::VtArgType(VtMatrix4 value) { construct(inside, value); }
VtArgType::VtArgType(VtTransform value) { construct(inside, value); }
VtArgType::VtArgType(const VtInstanceArray<VtLong> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<double> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector2> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector3> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector4> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix2> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix3> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix4> &array) { construct(inside, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtTransform> &array) { construct(inside, &array); }

VtArgType::VtArgType(const VtArgType &other) {
    const int serial = copying_for_a_list ? 0 : recording::new_serial();
    if (serial)
        recording::Call("VtArgType(copy)").with("object", serial).with("of", content(other).serial).done();
    new (inside) Pointer(new ValueContent{serial, content(other).value});
}

VtArgType::~VtArgType() {
    const ValueContent *own = &content(*this);
    if (own->serial)
        recording::Call("~VtArgType").with("object", own->serial).done_without_fault();
    delete own;
}

VtArgTag VtArgType::Tag() const { return static_cast<VtArgTag>(content(*this).value.index() + 1); }

VtLong VtArgType::Long() const { return get<VtLong>(*this); }
double VtArgType::Double() const { return get<double>(*this); }
const char *VtArgType::Text() const { return get<const char *>(*this); }
const VtVector2 &VtArgType::Vector2() const { return get<VtVector2>(*this); }
const VtVector3 &VtArgType::Vector3() const { return get<VtVector3>(*this); }
const VtVector4 &VtArgType::Vector4() const { return get<VtVector4>(*this); }
const VtMatrix2 &VtArgType::Matrix2() const { return get<VtMatrix2>(*this); }
const VtMatrix3 &VtArgType::Matrix3() const { return get<VtMatrix3>(*this); }
const VtMatrix4 &VtArgType::Matrix4() const { return get<VtMatrix4>(*this); }
const VtTransform &VtArgType::Transform() const { return get<VtTransform>(*this); }
const VtInstanceArray<VtLong> &VtArgType::LongArray() const { return get_array<VtLong>(*this); }
const VtInstanceArray<double> &VtArgType::DoubleArray() const { return get_array<double>(*this); }
const VtInstanceArray<VtVector2> &VtArgType::Vector2Array() const { return get_array<VtVector2>(*this); }
const VtInstanceArray<VtVector3> &VtArgType::Vector3Array() const { return get_array<VtVector3>(*this); }
const VtInstanceArray<VtVector4> &VtArgType::Vector4Array() const { return get_array<VtVector4>(*this); }
const VtInstanceArray<VtMatrix2> &VtArgType::Matrix2Array() const { return get_array<VtMatrix2>(*this); }
const VtInstanceArray<VtMatrix3> &VtArgType::Matrix3Array() const { return get_array<VtMatrix3>(*this); }
const VtInstanceArray<VtMatrix4> &VtArgType::Matrix4Array() const { return get_array<VtMatrix4>(*this); }
const VtInstanceArray<VtTransform> &VtArgType::TransformArray() const { return get_array<VtTransform>(*this); }
