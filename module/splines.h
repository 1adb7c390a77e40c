// The module functions that hand out spline bases and steps.
#pragma once

#include <Python.h>

PyObject *bezier_basis(PyObject *module, PyObject *arguments);
PyObject *bspline_basis(PyObject *module, PyObject *arguments);
PyObject *catmullrom_basis(PyObject *module, PyObject *arguments);
PyObject *hermite_basis(PyObject *module, PyObject *arguments);

PyObject *bezier_step(PyObject *module, PyObject *arguments);
PyObject *bspline_step(PyObject *module, PyObject *arguments);
PyObject *catmullrom_step(PyObject *module, PyObject *arguments);
PyObject *hermite_step(PyObject *module, PyObject *arguments);
