// The Python type matrix3.
#include "algebra/matrices.h"
#include "algebra/matrix_types.h"
#include "algebra/vector_types.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix3 {
    using Native = VtMatrix3;
    static constexpr PyTypeObject &type = Matrix3type;
    static constexpr PyTypeObject &row_type = Vector3type;
    static constexpr char opening[] = "matrix3( ";
    static constexpr char uninitialized[] = "Matrix3 object has not been initialized";
    static PyObject *new_row(const VtVector3 &row) { return newvector3object(row); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix3_get(PyObject *self, Arguments arguments) { return matrices::get<Matrix3>(self, arguments); }
PyObject *matrix3_set(PyObject *self, Arguments arguments) { return matrices::set<Matrix3>(self, arguments); }

PyObject *matrix3_print(PyObject *self) { return matrices::print<Matrix3>(self); }
void matrix3_dealloc(PyObject *self) { dealloc<VtMatrix3>(self); }

PyMethodDef matrix3methods[] = {
    METHOD("get", matrix3_get),
    METHOD("set", matrix3_set),
    METHOD_END,
};

} // namespace

PyTypeObject Matrix3type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix3",
    .tp_basicsize = sizeof(matrix3object),
    .tp_dealloc = matrix3_dealloc,
    .tp_repr = matrix3_print,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix3methods,
};

PyObject *newmatrix3object(VtMatrix3 value) { return matrices::from_value<Matrix3>(value); }
PyObject *newmatrix3object(VtVector3 r0, VtVector3 r1, VtVector3 r2) { return newmatrix3object(VtMatrix3(r0, r1, r2)); }

PyObject *matrix3_new(PyObject *, PyObject *arguments) { return matrices::from_arguments<Matrix3>(arguments); }
