// The Python type transform, for code that takes or makes such objects.
#pragma once

#include "algebra/vt_transform.h"
#include "interpreter/object.h"

using transformobject = Record<VtTransform>;

extern PyTypeObject Transformtype;

// Factories: the zero transform, or a copy of the value; a new reference, or null with an error set.
PyObject *newtransformobject();
PyObject *newtransformobject(VtTransform value);

// Module functions.
PyObject *transform_new(PyObject *module, PyObject *arguments);
PyObject *compose(PyObject *module, PyObject *arguments);
PyObject *invert(PyObject *module, PyObject *arguments);
