// VtArgType: one tagged value of a parameter list, as this library keeps it.
#include "renderer/vt_arg_type.h"

#include <cstring>
#include <new>

// The inside is the tag, and from byte 8 on the value: a number, a text pointer, a vector, a matrix, a transform, or
// the address of an array. Every kind is trivially copyable and trivially destroyed. Scene calls make one such value
// for each list element, so nothing here allocates and only the bytes in use are written.

namespace {

constexpr std::size_t value_at = 8;

// The largest kinds up to vector4, matrix2 and the pointers take 32 bytes; matrix3, matrix4 and transform take more.
constexpr std::size_t small_size = value_at + sizeof(VtMatrix2);

template <class Value> void put(unsigned char *inside, VtArgTag tag, const Value &value) {
    static_assert(std::is_trivially_copyable_v<Value> && std::is_trivially_destructible_v<Value>);
    // NOLINTNEXTLINE(bugprone-sizeof-expression): of an array, the address is meant
    static_assert(value_at + sizeof(Value) <= sizeof(VtArgType));
    ::new (inside) VtArgTag(tag);
    ::new (inside + value_at) Value(value);
}

template <class Value> const Value &get(const unsigned char *inside) {
    return *std::launder(reinterpret_cast<const Value *>(inside + value_at));
}

} // namespace

VtArgType::VtArgType(VtLong value) { put(inside, VtArgTag::Long, value); }
VtArgType::VtArgType(double value) { put(inside, VtArgTag::Double, value); }
VtArgType::VtArgType(char *text) { put<const char *>(inside, VtArgTag::Text, text); }
VtArgType::VtArgType(VtVector2 value) { put(inside, VtArgTag::Vector2, value); }
VtArgType::VtArgType(VtVector3 value) { put(inside, VtArgTag::Vector3, value); }
VtArgType::VtArgType(VtVector4 value) { put(inside, VtArgTag::Vector4, value); }
VtArgType::VtArgType(VtMatrix2 value) { put(inside, VtArgTag::Matrix2, value); }
VtArgType::VtArgType(VtMatrix3 value) { put(inside, VtArgTag::Matrix3, value); }
VtArgType::VtArgType(VtMatrix4 value) { put(inside, VtArgTag::Matrix4, value); }
VtArgType::VtArgType(VtTransform value) { put(inside, VtArgTag::Transform, value); }
VtArgType::VtArgType(const VtInstanceArray<VtLong> &array) { put(inside, VtArgTag::LongArray, &array); }
VtArgType::VtArgType(const VtInstanceArray<double> &array) { put(inside, VtArgTag::DoubleArray, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector2> &array) { put(inside, VtArgTag::Vector2Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector3> &array) { put(inside, VtArgTag::Vector3Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtVector4> &array) { put(inside, VtArgTag::Vector4Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix2> &array) { put(inside, VtArgTag::Matrix2Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix3> &array) { put(inside, VtArgTag::Matrix3Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtMatrix4> &array) { put(inside, VtArgTag::Matrix4Array, &array); }
VtArgType::VtArgType(const VtInstanceArray<VtTransform> &array) { put(inside, VtArgTag::TransformArray, &array); }

VtArgType::VtArgType(const VtArgType &other) {
    const VtArgTag tag = other.Tag();
    const bool is_large = tag == VtArgTag::Matrix3 || tag == VtArgTag::Matrix4 || tag == VtArgTag::Transform;
    std::memcpy(inside, other.inside, is_large ? sizeof inside : small_size);
}

VtArgType::~VtArgType() {} // Exported, so not the header's; values own nothing.

VtArgTag VtArgType::Tag() const { return *std::launder(reinterpret_cast<const VtArgTag *>(inside)); }

VtLong VtArgType::Long() const { return get<VtLong>(inside); }
double VtArgType::Double() const { return get<double>(inside); }
const char *VtArgType::Text() const { return get<const char *>(inside); }
const VtVector2 &VtArgType::Vector2() const { return get<VtVector2>(inside); }
const VtVector3 &VtArgType::Vector3() const { return get<VtVector3>(inside); }
const VtVector4 &VtArgType::Vector4() const { return get<VtVector4>(inside); }
const VtMatrix2 &VtArgType::Matrix2() const { return get<VtMatrix2>(inside); }
const VtMatrix3 &VtArgType::Matrix3() const { return get<VtMatrix3>(inside); }
const VtMatrix4 &VtArgType::Matrix4() const { return get<VtMatrix4>(inside); }
const VtTransform &VtArgType::Transform() const { return get<VtTransform>(inside); }

const VtInstanceArray<VtLong> &VtArgType::LongArray() const { return *get<const VtInstanceArray<VtLong> *>(inside); }
const VtInstanceArray<double> &VtArgType::DoubleArray() const { return *get<const VtInstanceArray<double> *>(inside); }
const VtInstanceArray<VtVector2> &VtArgType::Vector2Array() const {
    return *get<const VtInstanceArray<VtVector2> *>(inside);
}
const VtInstanceArray<VtVector3> &VtArgType::Vector3Array() const {
    return *get<const VtInstanceArray<VtVector3> *>(inside);
}
const VtInstanceArray<VtVector4> &VtArgType::Vector4Array() const {
    return *get<const VtInstanceArray<VtVector4> *>(inside);
}
const VtInstanceArray<VtMatrix2> &VtArgType::Matrix2Array() const {
    return *get<const VtInstanceArray<VtMatrix2> *>(inside);
}
const VtInstanceArray<VtMatrix3> &VtArgType::Matrix3Array() const {
    return *get<const VtInstanceArray<VtMatrix3> *>(inside);
}
const VtInstanceArray<VtMatrix4> &VtArgType::Matrix4Array() const {
    return *get<const VtInstanceArray<VtMatrix4> *>(inside);
}
const VtInstanceArray<VtTransform> &VtArgType::TransformArray() const {
    return *get<const VtInstanceArray<VtTransform> *>(inside);
}
