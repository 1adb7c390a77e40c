// The nine Python array types, for code that takes or makes such objects.
#pragma once

#include "algebra/vt_base.h"
#include "algebra/vt_matrix.h"
#include "algebra/vt_transform.h"
#include "algebra/vt_vector.h"
#include "arrays/owned_array.h"
#include "interpreter/object.h"

using intarrayobject = Record<OwnedArray<VtLong>>;
using floatarrayobject = Record<OwnedArray<double>>;
using vector2arrayobject = Record<OwnedArray<VtVector2>>;
using vector3arrayobject = Record<OwnedArray<VtVector3>>;
using vector4arrayobject = Record<OwnedArray<VtVector4>>;
using matrix2arrayobject = Record<OwnedArray<VtMatrix2>>;
using matrix3arrayobject = Record<OwnedArray<VtMatrix3>>;
using matrix4arrayobject = Record<OwnedArray<VtMatrix4>>;
using transformarrayobject = Record<OwnedArray<VtTransform>>;

extern PyTypeObject intarraytype;
extern PyTypeObject floatarraytype;
extern PyTypeObject vector2arraytype;
extern PyTypeObject vector3arraytype;
extern PyTypeObject vector4arraytype;
extern PyTypeObject matrix2arraytype;
extern PyTypeObject matrix3arraytype;
extern PyTypeObject matrix4arraytype;
extern PyTypeObject transformarraytype;

// Factories: a new empty array; a new reference, or null with an error set.
PyObject *newintarrayobject();
PyObject *newfloatarrayobject();
PyObject *newvector2arrayobject();
PyObject *newvector3arrayobject();
PyObject *newvector4arrayobject();
PyObject *newmatrix2arrayobject();
PyObject *newmatrix3arrayobject();
PyObject *newmatrix4arrayobject();
PyObject *newtransformarrayobject();

// Module functions.
PyObject *intarray_new(PyObject *module, PyObject *arguments);
PyObject *floatarray_new(PyObject *module, PyObject *arguments);
PyObject *vector2array_new(PyObject *module, PyObject *arguments);
PyObject *vector3array_new(PyObject *module, PyObject *arguments);
PyObject *vector4array_new(PyObject *module, PyObject *arguments);
PyObject *matrix2array_new(PyObject *module, PyObject *arguments);
PyObject *matrix3array_new(PyObject *module, PyObject *arguments);
PyObject *matrix4array_new(PyObject *module, PyObject *arguments);
PyObject *transformarray_new(PyObject *module, PyObject *arguments);
