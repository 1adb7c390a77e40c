// Errors that the module raises itself.
#include "interpreter/errors.h"

namespace errors {

namespace {
PyObject *raised_class(PyObject *VantorError) { return VantorError ? VantorError : PyExc_SystemError; }
} // namespace

PyObject *module_error(PyObject *VantorError, const char *text) {
    PyErr_SetString(raised_class(VantorError), text);
    return nullptr;
}

void from_errno(PyObject *VantorError) { PyErr_SetFromErrno(raised_class(VantorError)); }

PyObject *index_out_of_bounds() {
    // Made once: every loop over a sequence ends here.
    static PyObject *const text = PyUnicode_InternFromString("index out-of-bounds");

    if (text)
        PyErr_SetObject(PyExc_IndexError, text);
    else
        PyErr_NoMemory();
    return nullptr;
}

Py_ssize_t negative_length(const char *type_name, long size) {
    PyErr_Format(PyExc_SystemError, "%s has the negative size %ld", type_name, size);
    return -1;
}

} // namespace errors
