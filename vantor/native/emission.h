// Emission by a picture: which triangles of a mesh shine, and how brightly.
#pragma once

#include <Python.h>

/// emission_groups(triangles, uvs, colours, width, height): a list of (mean colour, triangles), the first of which do
/// not shine. The mean is that of a picture's linear float32 colours over the triangles; those of one group have about
/// the same. Triangles are rows of three int32, uvs of two doubles. A function of the companion: a new reference, or
/// null with an error set.
PyObject *emission_groups(PyObject *, PyObject *arguments);
