// vantor._native: the compiled companion of the package vantor. What needs speed or the libraries of C.
#include "vantor/native/emission.h"
#include "vantor/native/hooks.h"
#include "vantor/native/model_files.h"
#include "vantor/native/module_types.h"
#include "vantor/native/parts.h"
#include "vantor/native/picture_files.h"
#include "vantor/native/values.h"

#include <Python.h>

namespace {

PyMethodDef functions[] = {
    {"to_array", to_array, METH_VARARGS, nullptr},
    {"from_array", from_array, METH_O, nullptr},
    {"to_transform", to_transform, METH_O, nullptr},
    {"numbers", numbers, METH_VARARGS, nullptr},
    {"float32", float32, METH_O, nullptr},
    {"shape", shape, METH_O, nullptr},
    {"read_picture", read_picture, METH_O, nullptr},
    {"read_layers", read_layers, METH_O, nullptr},
    {"read_part", read_part, METH_O, nullptr},
    {"join_parts", join_parts, METH_VARARGS, nullptr},
    {"sum_parts", sum_parts, METH_O, nullptr},
    {"write_picture", write_picture, METH_VARARGS, nullptr},
    {"png_bytes", png_bytes, METH_VARARGS, nullptr},
    {"library", library, METH_NOARGS, nullptr},
    {"vocabulary", vocabulary, METH_NOARGS, nullptr},
    {"has_messages", has_messages, METH_NOARGS, nullptr},
    {"call", call, METH_VARARGS, nullptr},
    {"progress_into", progress_into, METH_O, nullptr},
    {"preview_into", preview_into, METH_VARARGS, nullptr},
    {"end_with", end_with, METH_O, nullptr},
    {"fork", fork_process, METH_NOARGS, nullptr},
    {"read_model", read_model, METH_O, nullptr},
    {"emission_parts", emission_parts, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef companion = {
    .m_base = PyModuleDef_HEAD_INIT,
    .m_name = "vantor._native",
    .m_size = -1, // once in a process, like the module whose types it keeps
    .m_methods = functions,
};

} // namespace

PyMODINIT_FUNC PyInit__native() {
    if (!find_module_types())
        return nullptr;
    PyObject *module = PyModule_Create(&companion);
    if (module && PyModule_AddStringConstant(module, "version", VANTOR_VERSION) < 0)
        Py_CLEAR(module);
    return module;
}
