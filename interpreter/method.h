// Entries of method tables.
#pragma once

#include "interpreter/arguments.h"

/// Between the interpreter's vector call and a handler: PyObject *handler(PyObject *self, Arguments arguments).
template <auto Handler> PyObject *old_style(PyObject *self, PyObject *const *items, Py_ssize_t count) {
    return Handler(self, Arguments{items, count});
}

/// One entry of a type's method table. A macro, because only an aggregate written in place is constant data under every
/// compiler; a function would fill the tables while the module loads. Keyword arguments are refused by the interpreter.
#define METHOD(name, handler)                                                                                          \
    { name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(&old_style<handler>)), METH_FASTCALL, nullptr }

/// The last entry of a method table.
#define METHOD_END                                                                                                     \
    { nullptr, nullptr, 0, nullptr }
