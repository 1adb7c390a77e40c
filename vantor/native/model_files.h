// Model files.
#pragma once

#include <Python.h>

/// read_model(path): what the file holds, in a dict of lists: "meshes", and where the file has them "instances",
/// "materials", "textures", "cameras" and "lights". A new reference, or null with an error set: OSError if the file
/// cannot be read.
PyObject *read_model(PyObject *, PyObject *path);
