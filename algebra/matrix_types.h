// The Python types matrix2, matrix3 and matrix4, for code that takes or makes such objects.
#pragma once

#include "algebra/vt_matrix.h"
#include "interpreter/object.h"

using matrix2object = Record<VtMatrix2>;
using matrix3object = Record<VtMatrix3>;
using matrix4object = Record<VtMatrix4>;

extern PyTypeObject Matrix2type;
extern PyTypeObject Matrix3type;
extern PyTypeObject Matrix4type;

// Factories: a new object with a copy of the value, or of the rows; a new reference, or null with an error set.
PyObject *newmatrix2object(VtMatrix2 value);
PyObject *newmatrix2object(VtVector2 r0, VtVector2 r1);
PyObject *newmatrix3object(VtMatrix3 value);
PyObject *newmatrix3object(VtVector3 r0, VtVector3 r1, VtVector3 r2);
PyObject *newmatrix4object(VtMatrix4 value);
PyObject *newmatrix4object(VtVector4 r0, VtVector4 r1, VtVector4 r2, VtVector4 r3);

// Module functions.
PyObject *matrix2_new(PyObject *module, PyObject *arguments);
PyObject *matrix3_new(PyObject *module, PyObject *arguments);
PyObject *matrix4_new(PyObject *module, PyObject *arguments);
