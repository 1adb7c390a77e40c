// Errors that the module raises itself; all others are the interpreter's.
#pragma once

#include <Python.h>

// The module's error object. Every source file that raises through it declares a VantorError of its own, and only the
// one in the module's initialiser is ever assigned: the class that a script knows as vantorPM.error is never raised.
// An error raised through an unassigned VantorError has no exception type. The interpreters that the module was first
// written for turned such an error into a SystemError; recent ones crash on it. So it is raised as SystemError here,
// with the text that those old interpreters lost.
namespace errors {

/// Raises the text through a file's VantorError. Returns null, for a handler to return.
[[gnu::cold]] PyObject *module_error(PyObject *VantorError, const char *text);

/// Raises errno and its text through a file's VantorError.
[[gnu::cold]] void from_errno(PyObject *VantorError);

/// Raises IndexError "index out-of-bounds". Returns null, for a handler to return.
[[gnu::cold]] PyObject *index_out_of_bounds();

/// Raises SystemError for the length of an array of negative size: a length slot cannot return one. Returns -1.
[[gnu::cold]] Py_ssize_t negative_length(const char *type_name, long size);

} // namespace errors
