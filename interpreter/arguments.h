// What a method was called with, without a tuple built for it.
#pragma once

#include <Python.h>

/// The positional arguments of one call, borrowed from the interpreter.
///
/// Methods keep the convention of the interpreter's early releases, which let a method see how it was called: no
/// argument (nothing), one argument (that object, bare), or several (their tuple). The count says which it was, so
/// that the tuple never needs to exist. One argument that is itself a tuple cannot be told from several:
/// v.set((0, 1.0)) is v.set(0, 1.0).
struct Arguments {
    PyObject *const *items;
    Py_ssize_t count;

    /// The items of an argument tuple, as a module function receives it.
    static Arguments of_tuple(PyObject *tuple) { return {&PyTuple_GET_ITEM(tuple, 0), PyTuple_GET_SIZE(tuple)}; }

    /// What a method that reads a tuple sees: several arguments, or the items of the one tuple that was given.
    Arguments spread() const { return count == 1 && PyTuple_Check(items[0]) ? of_tuple(items[0]) : *this; }
};
