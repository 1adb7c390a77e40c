// The module functions that hand out spline bases and steps. None looks at its arguments.
#include "module/splines.h"

#include "algebra/matrix_types.h"
#include "renderer/vt_bases.h"

// The bases are the renderer library's.
PyObject *bezier_basis(PyObject *, PyObject *) { return newmatrix4object(VtBezierBasis()); }
PyObject *bspline_basis(PyObject *, PyObject *) { return newmatrix4object(VtBSplineBasis()); }
PyObject *catmullrom_basis(PyObject *, PyObject *) { return newmatrix4object(VtCatmullRomBasis()); }
PyObject *hermite_basis(PyObject *, PyObject *) { return newmatrix4object(VtHermiteBasis()); }

// The steps are the module's: how many control points on, the next segment of a curve begins.
PyObject *bezier_step(PyObject *, PyObject *) { return PyLong_FromLong(3); }
PyObject *bspline_step(PyObject *, PyObject *) { return PyLong_FromLong(1); }
PyObject *catmullrom_step(PyObject *, PyObject *) { return PyLong_FromLong(1); }
PyObject *hermite_step(PyObject *, PyObject *) { return PyLong_FromLong(2); }
