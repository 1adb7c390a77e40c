// vantor_factories: the module's own sources, with their native factories callable from Python.
//
// Its types are its own: objects made here go to functions here, and to `module`, the vantorPM made of these sources.
#include "allocations.h"

#include "algebra/matrix_types.h"
#include "algebra/transform_type.h"
#include "algebra/vector_types.h"
#include "scene/scene_type.h"

#include <Python.h>

PyMODINIT_FUNC PyInit_vantorPM();

namespace {

PyObject *make_scene(PyObject *, PyObject *arguments) {
    int n;
    return PyArg_ParseTuple(arguments, "i", &n) ? newsceneobject(n) : nullptr;
}

PyObject *make_vector2(PyObject *, PyObject *arguments) {
    double x, y;
    return PyArg_ParseTuple(arguments, "dd", &x, &y) ? newvector2object(x, y) : nullptr;
}

PyObject *make_vector3(PyObject *, PyObject *arguments) {
    double x, y, z;
    return PyArg_ParseTuple(arguments, "ddd", &x, &y, &z) ? newvector3object(x, y, z) : nullptr;
}

PyObject *make_vector4(PyObject *, PyObject *arguments) {
    double x, y, z, w;
    return PyArg_ParseTuple(arguments, "dddd", &x, &y, &z, &w) ? newvector4object(x, y, z, w) : nullptr;
}

PyObject *make_matrix2(PyObject *, PyObject *arguments) {
    PyObject *r0, *r1;
    if (!PyArg_ParseTuple(arguments, "O!O!", &Vector2type, &r0, &Vector2type, &r1))
        return nullptr;
    return newmatrix2object(*native<VtVector2>(r0), *native<VtVector2>(r1));
}

PyObject *make_matrix3(PyObject *, PyObject *arguments) {
    PyObject *r0, *r1, *r2;
    if (!PyArg_ParseTuple(arguments, "O!O!O!", &Vector3type, &r0, &Vector3type, &r1, &Vector3type, &r2))
        return nullptr;
    return newmatrix3object(*native<VtVector3>(r0), *native<VtVector3>(r1), *native<VtVector3>(r2));
}

PyObject *make_matrix4(PyObject *, PyObject *arguments) {
    PyObject *r0, *r1, *r2, *r3;
    if (!PyArg_ParseTuple(arguments, "O!O!O!O!", &Vector4type, &r0, &Vector4type, &r1, &Vector4type, &r2, &Vector4type,
                          &r3))
        return nullptr;
    return newmatrix4object(*native<VtVector4>(r0), *native<VtVector4>(r1), *native<VtVector4>(r2),
                            *native<VtVector4>(r3));
}

PyObject *make_transform(PyObject *, PyObject *) { return newtransformobject(); }

// The factory that takes a value, given an object's.
PyObject *copy(PyObject *, PyObject *object) {
    if (Py_IS_TYPE(object, &Vector2type))
        return newvector2object(*native<VtVector2>(object));
    if (Py_IS_TYPE(object, &Vector3type))
        return newvector3object(*native<VtVector3>(object));
    if (Py_IS_TYPE(object, &Vector4type))
        return newvector4object(*native<VtVector4>(object));
    if (Py_IS_TYPE(object, &Matrix2type))
        return newmatrix2object(*native<VtMatrix2>(object));
    if (Py_IS_TYPE(object, &Matrix3type))
        return newmatrix3object(*native<VtMatrix3>(object));
    if (Py_IS_TYPE(object, &Matrix4type))
        return newmatrix4object(*native<VtMatrix4>(object));
    if (Py_IS_TYPE(object, &Transformtype))
        return newtransformobject(*native<VtTransform>(object));
    return PyErr_Format(PyExc_TypeError, "copy() takes a vector, matrix or transform of vantor_factories");
}

PyObject *fail_allocation(PyObject *, PyObject *arguments) {
    int n;
    if (!PyArg_ParseTuple(arguments, "i", &n))
        return nullptr;
    allocations::fail(n);
    Py_RETURN_NONE;
}

PyObject *outstanding_allocations(PyObject *, PyObject *) { return PyLong_FromLong(allocations::outstanding()); }

PyMethodDef functions[] = {
    {"make_scene", make_scene, METH_VARARGS, nullptr},
    {"make_vector2", make_vector2, METH_VARARGS, nullptr},
    {"make_vector3", make_vector3, METH_VARARGS, nullptr},
    {"make_vector4", make_vector4, METH_VARARGS, nullptr},
    {"make_matrix2", make_matrix2, METH_VARARGS, nullptr},
    {"make_matrix3", make_matrix3, METH_VARARGS, nullptr},
    {"make_matrix4", make_matrix4, METH_VARARGS, nullptr},
    {"make_transform", make_transform, METH_NOARGS, nullptr},
    {"copy", copy, METH_O, nullptr},
    {"fail_allocation", fail_allocation, METH_VARARGS, nullptr},
    {"outstanding_allocations", outstanding_allocations, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef definition = {
    .m_base = PyModuleDef_HEAD_INIT,
    .m_name = "vantor_factories",
    .m_size = -1,
    .m_methods = functions,
};

} // namespace

PyMODINIT_FUNC PyInit_vantor_factories() {
    PyObject *vantorPM = PyInit_vantorPM();
    if (!vantorPM)
        return nullptr;

    PyObject *module = PyModule_Create(&definition);
    if (!module || PyModule_AddObject(module, "module", vantorPM) < 0) {
        Py_DECREF(vantorPM);
        Py_XDECREF(module);
        return nullptr;
    }
    return module;
}
