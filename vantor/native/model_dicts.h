// Model dicts: what model files hold, as dicts and lists of Python.
#pragma once

#include "vantor/native/reference.h"

#include <Python.h>

#include <exception>

/// Thrown where the interpreter has failed to make an object: an error is set then.
struct PythonError : std::exception {};

inline Reference checked(PyObject *object) {
    if (!object)
        throw PythonError();
    return Reference(object);
}

/// A dict that is filled. Each value is a new reference, or null with an error set.
class Dict {
  public:
    Dict() : dict(checked(PyDict_New())) {}
    void set(const char *key, PyObject *value) {
        const Reference owned = checked(value);
        if (PyDict_SetItemString(dict.get(), key, owned.get()) < 0)
            throw PythonError();
    }
    PyObject *release() { return dict.release(); }

  private:
    Reference dict;
};

/// A list with what make gives for each of count indices.
template <class Make> PyObject *list_of(unsigned count, Make make) {
    Reference list = checked(PyList_New(0));
    for (unsigned i = 0; i < count; ++i) {
        const Reference item = checked(make(i));
        if (PyList_Append(list.get(), item.get()) < 0)
            throw PythonError();
    }
    return list.release();
}

/// An array of the module, of rows of four-byte numbers in memory.
PyObject *array_of(const char *type, const char *format, const void *numbers, std::size_t rows, std::size_t columns);
