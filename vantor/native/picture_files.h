// Picture files, read and written with the code of the renderer that ships with the module.
#pragma once

#include <Python.h>

// Functions of the companion. Each returns a new reference, or null with an error set (OSError for what is wrong with a
// file).

/// read_picture(path): (width, height, colours, alpha) of a PNG, JPEG, TIFF, OpenEXR or Radiance file. Linear
/// float32 in bytearrays: three for each pixel, and one of alpha, or None.
PyObject *read_picture(PyObject *, PyObject *path);
/// read_layers(path): a dict of the layers of an OpenEXR file by their names, each like the colours above; of any other
/// file an empty one.
PyObject *read_layers(PyObject *, PyObject *path);
/// write_picture(path, full_width, full_height, window, colours, scale, display, alpha, bits, layers): colours of a
/// window (x0, y0, x1, y1) in a file, whole or not at all. The alpha is float32 for each pixel, or None; the bits are
/// those of a channel, 0 for what is usual; layers of an OpenEXR file are pairs of a name and colours.
PyObject *write_picture(PyObject *, PyObject *arguments);
/// png_bytes(width, height, colours, scale, display): a PNG file, in memory.
PyObject *png_bytes(PyObject *, PyObject *arguments);
