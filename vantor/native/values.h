// Values: Python's numbers into the module's values and arrays, and back.
#pragma once

#include <Python.h>

// Functions of the companion. Each returns a new reference, or null with an error set.

/// to_array(type, value): a new array of the module, with the numbers of the value.
PyObject *to_array(PyObject *, PyObject *arguments);
/// from_array(array): (a bytearray with the numbers of an array of the module, their numpy type's name, their shape).
PyObject *from_array(PyObject *, PyObject *array);
/// to_transform(value): a transform of the module, of 4 x 4 numbers.
PyObject *to_transform(PyObject *, PyObject *value);
/// numbers(value, shape): a tuple of floats, row after row, of a value that has the shape.
PyObject *numbers(PyObject *, PyObject *arguments);
/// shape(value): the shape of the value's numbers, and whether all are integers.
PyObject *shape(PyObject *, PyObject *value);
/// float32(value): (a bytearray of the value's numbers as float32, their shape, whether all are integers).
PyObject *float32(PyObject *, PyObject *value);
