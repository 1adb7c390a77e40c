// The Python types vector2, vector3 and vector4, for code that takes or makes such objects.
#pragma once

#include "algebra/vt_vector.h"
#include "interpreter/object.h"

using vector2object = Record<VtVector2>;
using vector3object = Record<VtVector3>;
using vector4object = Record<VtVector4>;

extern PyTypeObject Vector2type;
extern PyTypeObject Vector3type;
extern PyTypeObject Vector4type;

// Factories: a new object with a copy of the value, or of the components; a new reference, or null with an error set.
PyObject *newvector2object(VtVector2 value);
PyObject *newvector2object(double x, double y);
PyObject *newvector3object(VtVector3 value);
PyObject *newvector3object(double x, double y, double z);
PyObject *newvector4object(VtVector4 value);
PyObject *newvector4object(double x, double y, double z, double w);

// Module functions.
PyObject *vector2_new(PyObject *module, PyObject *arguments);
PyObject *vector3_new(PyObject *module, PyObject *arguments);
PyObject *vector4_new(PyObject *module, PyObject *arguments);
