// Parts of a picture: passes that have made some of its samples, put together.
#pragma once

#include <Python.h>

/// read_part(path): of an OpenEXR file of a part, the whole picture's width and height, the window, and (first, end,
/// in_all, reduction, sums), the sums as a bytearray of seven doubles for each pixel.
PyObject *read_part(PyObject *, PyObject *path);
/// join_parts(part, following): two of equal size that are summed in pairs, as one part.
PyObject *join_parts(PyObject *, PyObject *parts);
/// sum_parts(parts): of parts like those above, each of which begins where the one before ends, the colours of the
/// picture that has all their samples, as a bytearray of three float32 for each pixel.
PyObject *sum_parts(PyObject *, PyObject *parts);
