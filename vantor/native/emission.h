// Emission by a picture: which triangles of a mesh shine.
#pragma once

#include <Python.h>

/// emission_parts(triangles, uvs, colours, width, height): the triangles on which a picture, linear float32 colours, is
/// black, and all others; None for neither. Triangles are rows of three int32, uvs of two doubles. A function of the
/// companion: a new reference, or null with an error set.
PyObject *emission_parts(PyObject *, PyObject *arguments);
