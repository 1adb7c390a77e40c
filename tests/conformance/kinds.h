// The 19 kinds of VtArgType: their tags, their names, and how the C++ ABI spells their functions.
#pragma once

#include "renderer/vt_arg_type.h"

#include <string>

/// A kind of value: its tag, its name, which is the accessor's, and how its constructor's parameter is spelled.
struct Kind {
    VtArgTag tag;
    std::string name;
    std::string parameter;

    std::string constructor() const { return "_ZN9VtArgTypeC1E" + parameter; }
    std::string accessor() const { return "_ZNK9VtArgType" + std::to_string(name.size()) + name + "Ev"; }
};

/// A type that is both a value and an array's element.
struct ElementType {
    VtArgTag tag;
    VtArgTag array_tag;
    const char *name;
    const char *parameter;
};
template <class Type> constexpr ElementType element_type{};
template <> inline constexpr ElementType element_type<VtLong>{VtArgTag::Long, VtArgTag::LongArray, "Long", "i"};
template <> inline constexpr ElementType element_type<double>{VtArgTag::Double, VtArgTag::DoubleArray, "Double", "d"};
template <> inline constexpr ElementType element_type<VtVector2>{VtArgTag::Vector2, VtArgTag::Vector2Array, "Vector2",
                                                                 "8VtVectorILi2EE"};
template <> inline constexpr ElementType element_type<VtVector3>{VtArgTag::Vector3, VtArgTag::Vector3Array, "Vector3",
                                                                 "8VtVectorILi3EE"};
template <> inline constexpr ElementType element_type<VtVector4>{VtArgTag::Vector4, VtArgTag::Vector4Array, "Vector4",
                                                                 "8VtVectorILi4EE"};
template <> inline constexpr ElementType element_type<VtMatrix2>{VtArgTag::Matrix2, VtArgTag::Matrix2Array, "Matrix2",
                                                                 "8VtMatrixILi2EE"};
template <> inline constexpr ElementType element_type<VtMatrix3>{VtArgTag::Matrix3, VtArgTag::Matrix3Array, "Matrix3",
                                                                 "8VtMatrixILi3EE"};
template <> inline constexpr ElementType element_type<VtMatrix4>{VtArgTag::Matrix4, VtArgTag::Matrix4Array, "Matrix4",
                                                                 "8VtMatrixILi4EE"};
template <> inline constexpr ElementType element_type<VtTransform>{VtArgTag::Transform, VtArgTag::TransformArray,
                                                                   "Transform", "11VtTransform"};

/// Calls visit with a zero value of each such type: all kinds of values but the text.
template <class Visit> void for_each_element_type(Visit visit) {
    visit(VtLong());
    visit(double());
    visit(VtVector2());
    visit(VtVector3());
    visit(VtVector4());
    visit(VtMatrix2());
    visit(VtMatrix3());
    visit(VtMatrix4());
    visit(VtTransform());
}

inline Kind text_kind() { return {VtArgTag::Text, "Text", "Pc"}; }

template <class Type> Kind value_kind() {
    const ElementType &type = element_type<Type>;
    return {type.tag, type.name, type.parameter};
}

template <class Element> Kind array_kind() {
    const ElementType &type = element_type<Element>;
    return {type.array_tag, type.name + std::string("Array"),
            "RK15VtInstanceArrayI" + std::string(type.parameter) + "E"};
}
