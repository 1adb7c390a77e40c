// The types of the module vantorPM: which they are, and the numbers inside of their objects.
#pragma once

#include <Python.h>

#include <span>
#include <string>
#include <vector>

class Numbers;

/// A vector, a matrix or the transform.
struct ValueType {
    std::vector<Py_ssize_t> shape; ///< Of its numbers: (3) for a vector3, (4, 4) for a transform.
    PyTypeObject *type = nullptr;
    double *(*numbers_of)(PyObject *object);
};

/// One of the nine arrays.
struct ArrayType {
    const char *name;
    std::vector<Py_ssize_t> row_shape; ///< Of an element's numbers; empty for numbers themselves.
    bool holds_integers;
    PyObject *factory = nullptr; ///< The module's function.
    PyTypeObject *type = nullptr;
    /// Makes the array as many elements as there are, and copies them. False with an error set.
    bool (*fill)(PyObject *array, const Numbers &numbers, Py_ssize_t count);
    /// The elements' bytes in a new bytearray, or null with an error set.
    PyObject *(*bytes_of)(PyObject *array);
};

/// Imports vantorPM. False with an error set.
bool find_module_types();

/// The type of a value of the module; null if it is none. Compared by identity, as the module does.
const ValueType *value_type_of(PyObject *object);
const ArrayType *array_type_of(PyObject *object);
const ArrayType *array_type_named(const char *name);

/// A new transform of sixteen numbers, row after row, or null with an error set.
PyObject *new_transform(std::span<const double, 16> numbers);

/// "(N, 3)" for the shape (-1, 3).
std::string text_of_shape(std::span<const Py_ssize_t> shape);
