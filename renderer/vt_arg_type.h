// VtArgType: one tagged value of a parameter list.
#pragma once

#include "algebra/vt_base.h"
#include "algebra/vt_matrix.h"
#include "algebra/vt_transform.h"
#include "algebra/vt_vector.h"
#include "arrays/vt_instance_array.h"

/// What a VtArgType holds. The numbers are part of the interface.
enum class VtArgTag : VtLong {
    Long = 1,
    Double = 2,
    Text = 3,
    Vector2 = 4,
    Vector3 = 5,
    Vector4 = 6,
    Matrix2 = 7,
    Matrix3 = 8,
    Matrix4 = 9,
    Transform = 10,
    LongArray = 11,
    DoubleArray = 12,
    Vector2Array = 13,
    Vector3Array = 14,
    Vector4Array = 15,
    Matrix2Array = 16,
    Matrix3Array = 17,
    Matrix4Array = 18,
    TransformArray = 19,
};

/// One parameter value: a number, a text, a vector, a matrix, a transform, or a reference to an array.
///
/// Who makes and destroys it. For each element of a script's parameter list the module constructs one VtArgType on its
/// stack, hands it to VtArgList::Add(), and destroys it before it looks at the next element. A library's list therefore
/// keeps a copy; the copy constructor is the library's own and the module never calls it.
///
/// How long what it refers to lives. Numbers, vectors, matrices and transforms are passed by value. A text points into
/// the script's own string, and an array is the array object's own container. Both last until the creation call returns
/// and may change or vanish right after it; a library that needs them later copies them during the call. If the call
/// never comes, they may vanish before the value is destroyed: the destructor must not read them.
///
/// What can be in it. Any number, NaN and infinities included; a text of any length, the empty one included; an array
/// of any size. VtInstanceArray tells how to read an array: Size() may be negative, and it may exceed the number of
/// stored elements, where the script ran out of memory. ForEachBlock() visits the elements that exist, and no others.
///
/// Its size is fixed here; what is inside is the library's business. The module constructs and destroys, and uses none
/// of the accessors. An accessor may be called only if Tag() says that the value is of its kind.
class VtArgType {
  public:
    VT_API explicit VtArgType(VtLong);
    VT_API explicit VtArgType(double);
    /// UTF-8, null-terminated, never a null pointer. Not to be written to.
    VT_API explicit VtArgType(char *);
    VT_API explicit VtArgType(VtVector2);
    VT_API explicit VtArgType(VtVector3);
    VT_API explicit VtArgType(VtVector4);
    VT_API explicit VtArgType(VtMatrix2);
    VT_API explicit VtArgType(VtMatrix3);
    VT_API explicit VtArgType(VtMatrix4);
    VT_API explicit VtArgType(VtTransform);
    VT_API explicit VtArgType(const VtInstanceArray<VtLong> &);
    VT_API explicit VtArgType(const VtInstanceArray<double> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtVector2> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtVector3> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtVector4> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtMatrix2> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtMatrix3> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtMatrix4> &);
    VT_API explicit VtArgType(const VtInstanceArray<VtTransform> &);

    VT_API VtArgType(const VtArgType &);
    VT_API ~VtArgType();
    VtArgType &operator=(const VtArgType &) = delete;

    VT_API VtArgTag Tag() const;

    VT_API VtLong Long() const;
    VT_API double Double() const;
    VT_API const char *Text() const;
    VT_API const VtVector2 &Vector2() const;
    VT_API const VtVector3 &Vector3() const;
    VT_API const VtVector4 &Vector4() const;
    VT_API const VtMatrix2 &Matrix2() const;
    VT_API const VtMatrix3 &Matrix3() const;
    VT_API const VtMatrix4 &Matrix4() const;
    VT_API const VtTransform &Transform() const;
    VT_API const VtInstanceArray<VtLong> &LongArray() const;
    VT_API const VtInstanceArray<double> &DoubleArray() const;
    VT_API const VtInstanceArray<VtVector2> &Vector2Array() const;
    VT_API const VtInstanceArray<VtVector3> &Vector3Array() const;
    VT_API const VtInstanceArray<VtVector4> &Vector4Array() const;
    VT_API const VtInstanceArray<VtMatrix2> &Matrix2Array() const;
    VT_API const VtInstanceArray<VtMatrix3> &Matrix3Array() const;
    VT_API const VtInstanceArray<VtMatrix4> &Matrix4Array() const;
    VT_API const VtInstanceArray<VtTransform> &TransformArray() const;

  private:
    // Room for a tag and a transform.
    alignas(8) unsigned char inside[8 + sizeof(VtTransform)];
};

static_assert(sizeof(VtArgType) == 136 && alignof(VtArgType) == 8);
