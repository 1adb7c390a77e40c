// Hooks: what the loaded libVantor offers beyond the interface that every one has.
#pragma once

#include <Python.h>

// Functions of the companion. Each returns a new reference, or null with an error set.

/// library(): the path of the libVantor that the module vantorPM has loaded.
PyObject *library(PyObject *, PyObject *);
/// vocabulary(): the text of VtVocabulary(), or None.
PyObject *vocabulary(PyObject *, PyObject *);
/// has_messages(): whether the library tells its messages.
PyObject *has_messages(PyObject *, PyObject *);
/// call(messages, pictures, callable, *arguments): the callable's result. What the library tells on the way is appended
/// to the list messages, as pairs of whether it is a mistake, and the text. A picture that is meant for a file whose
/// path is a key of the dict pictures becomes its value, a bytearray of three float32 for each pixel of the window, if
/// the library offers pictures; the file is not written then.
PyObject *call(PyObject *, PyObject *arguments);
/// progress_into(buffer): from now on the fraction of a pass that is done is written to the buffer's first eight bytes,
/// as a double; None ends that.
PyObject *progress_into(PyObject *, PyObject *buffer);
/// preview_into(buffer, path, window): from now on what is finished of the picture that is meant for the path appears
/// in the buffer: the number of its parts as an int32, four bytes of nothing, and three float32 for each pixel of the
/// window, x0 y0 x1 y1. Returns whether the library offers that.
PyObject *preview_into(PyObject *, PyObject *arguments);
/// end_with(pid): from now on this process ends when its parent does, which is the process of that id.
PyObject *end_with(PyObject *, PyObject *parent);
/// fork(): as os.fork(), without its warning of threads: the child renders and ends, and waits for no other thread.
PyObject *fork_process(PyObject *, PyObject *);
