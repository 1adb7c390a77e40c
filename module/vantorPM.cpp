// The module vantorPM: its functions, its error object, its initialiser.
#include "algebra/matrix_types.h"
#include "algebra/transform_type.h"
#include "algebra/vector_types.h"
#include "arrays/array_types.h"
#include "module/splines.h"
#include "scene/scene_type.h"

#include <Python.h>

namespace {

// The one VantorError that is assigned: the class that scripts know as vantorPM.error.
PyObject *VantorError = nullptr;

PyMethodDef vantor_methods[] = {
    {"scene", scene_new, METH_VARARGS, nullptr},
    {"vector2", vector2_new, METH_VARARGS, nullptr},
    {"vector3", vector3_new, METH_VARARGS, nullptr},
    {"vector4", vector4_new, METH_VARARGS, nullptr},
    {"matrix2", matrix2_new, METH_VARARGS, nullptr},
    {"matrix3", matrix3_new, METH_VARARGS, nullptr},
    {"matrix4", matrix4_new, METH_VARARGS, nullptr},
    {"transform", transform_new, METH_VARARGS, nullptr},
    {"compose", compose, METH_VARARGS, nullptr},
    {"invert", invert, METH_VARARGS, nullptr},
    {"BezierBasis", bezier_basis, METH_VARARGS, nullptr},
    {"BSplineBasis", bspline_basis, METH_VARARGS, nullptr},
    {"CatmullRomBasis", catmullrom_basis, METH_VARARGS, nullptr},
    {"HermiteBasis", hermite_basis, METH_VARARGS, nullptr},
    {"BezierStep", bezier_step, METH_VARARGS, nullptr},
    {"BSplineStep", bspline_step, METH_VARARGS, nullptr},
    {"CatmullRomStep", catmullrom_step, METH_VARARGS, nullptr},
    {"HermiteStep", hermite_step, METH_VARARGS, nullptr},
    {"intarray", intarray_new, METH_VARARGS, nullptr},
    {"floatarray", floatarray_new, METH_VARARGS, nullptr},
    {"vector2array", vector2array_new, METH_VARARGS, nullptr},
    {"vector3array", vector3array_new, METH_VARARGS, nullptr},
    {"vector4array", vector4array_new, METH_VARARGS, nullptr},
    {"matrix2array", matrix2array_new, METH_VARARGS, nullptr},
    {"matrix3array", matrix3array_new, METH_VARARGS, nullptr},
    {"matrix4array", matrix4array_new, METH_VARARGS, nullptr},
    {"transformarray", transformarray_new, METH_VARARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyTypeObject *const types[] = {
    &scenetype,        &Vector2type,      &Vector3type,      &Vector4type,      &Matrix2type,        &Matrix3type,
    &Matrix4type,      &Transformtype,    &intarraytype,     &floatarraytype,   &vector2arraytype,   &vector3arraytype,
    &vector4arraytype, &matrix2arraytype, &matrix3arraytype, &matrix4arraytype, &transformarraytype,
};

PyModuleDef vantor_module = {
    .m_base = PyModuleDef_HEAD_INIT,
    .m_name = "vantorPM",
    .m_size = -1, // Initialised once in a process: the types are static.
    .m_methods = vantor_methods,
};

// The module as a new reference, or null with an error set.
PyObject *initvantorPM() {
    for (PyTypeObject *type : types)
        if (PyType_Ready(type) < 0)
            return nullptr;

    PyObject *module = PyModule_Create(&vantor_module);
    if (!module)
        return nullptr;
    PyObject *dictionary = PyModule_GetDict(module);

    // Without the class there is no module: an import that leaves an error set cannot succeed.
    VantorError = PyErr_NewException("vantorPM.error", nullptr, nullptr);
    if (!VantorError || PyDict_SetItemString(dictionary, "error", VantorError) < 0) {
        Py_DECREF(module);
        return nullptr;
    }
    return module;
}

} // namespace

PyMODINIT_FUNC PyInit_vantorPM() { return initvantorPM(); }
