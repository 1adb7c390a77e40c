// vantor_probe: what a Python test cannot do in Python.
#include <Python.h>

#include <exception>

namespace {

// call_catching(callable, *arguments): the text of the native exception that left the call, or None if it returned.
// A Python exception passes. The interpreter's own frames between here and the callable have nothing to release as long
// as the callable is a builtin function or method.
PyObject *call_catching(PyObject *, PyObject *arguments) {
    if (PyTuple_GET_SIZE(arguments) == 0) {
        PyErr_SetString(PyExc_TypeError, "call_catching() needs a callable");
        return nullptr;
    }
    PyObject *callable = PyTuple_GET_ITEM(arguments, 0);
    PyObject *rest = PyTuple_GetSlice(arguments, 1, PyTuple_GET_SIZE(arguments));
    if (!rest)
        return nullptr;

    PyObject *result = nullptr;
    try {
        result = PyObject_Call(callable, rest, nullptr);
        if (result) {
            Py_DECREF(result);
            result = Py_None;
            Py_INCREF(result);
        }
    } catch (const std::exception &exception) {
        result = PyUnicode_FromString(exception.what());
    }
    Py_DECREF(rest);
    return result;
}

PyMethodDef functions[] = {
    {"call_catching", call_catching, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef module = {
    PyModuleDef_HEAD_INIT, "vantor_probe", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr,
};

} // namespace

PyMODINIT_FUNC PyInit_vantor_probe() { return PyModule_Create(&module); }
