// The record that every Python object of the module has: the interpreter's header and one owning pointer.
#pragma once

#include "interpreter/errors.h"

#include <Python.h>

#include <new>
#include <type_traits>
#include <utility>

/// A Python object that owns one native value or object. The pointer is set before a script can see the object, never
/// replaced, and null only while the object is made or released.
template <class Native> struct Record { PyObject_HEAD Native *value; };

/// The native part of an object that is known to be of the right type.
template <class Native> Native *native(PyObject *object) {
    // Legal because a record is standard-layout: a pointer to it is a pointer to its header.
    static_assert(std::is_standard_layout_v<Record<Native>>);
    return reinterpret_cast<Record<Native> *>(object)->value;
}

/// A new object whose native part is made from the given values: a new reference, or null with an error set. An
/// exception of the native constructor passes; the half-made object is not released on that path.
template <class Native, class... Initial>
PyObject *new_object(PyTypeObject &type, PyObject *module_error_object, Initial &&...initial) {
    auto *object = PyObject_New(Record<Native>, &type);
    if (!object)
        return nullptr;

    object->value = new (std::nothrow) Native(std::forward<Initial>(initial)...);
    if (!object->value) {
        errors::from_errno(module_error_object);
        Py_DECREF(object);
        return nullptr;
    }
    return reinterpret_cast<PyObject *>(object);
}

/// Releases the native part, if there is one, and the record.
template <class Native> void dealloc(PyObject *self) {
    delete std::exchange(reinterpret_cast<Record<Native> *>(self)->value, nullptr);
    PyObject_Free(self);
}

/// A new reference to an object that a method returns so that calls chain.
inline PyObject *itself(PyObject *self) {
    Py_INCREF(self);
    return self;
}
