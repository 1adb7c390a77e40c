// VtArgType and VtArgList of the faulty libVantor. Without a fault it keeps the contract.
#include "fault.h"
#include "renderer/vt_arg_list.h"

#include <algorithm>
#include <new>
#include <vector>

namespace {

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
