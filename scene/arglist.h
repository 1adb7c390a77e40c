// A script's parameter list into the renderer's.
#pragma once

#include "renderer/vt_arg_list.h"

#include <Python.h>

/// Adds one VtArgType for each element of the Python list, in order. Accepted are elements of exactly these types: int
/// (within 32 bits), float, str, and the module's vectors, matrices, transform and arrays. Numbers, vectors, matrices
/// and transforms reach the renderer as copies, texts as pointers into the strings, arrays by reference to their
/// containers.
///
/// False with an error set at the first element that is something else, or a text that cannot be passed; the values
/// before it stand in the list then.
bool build_arglist(VtArgList &list, PyObject *elements);
