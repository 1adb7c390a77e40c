// The Python type matrix2.
#include "algebra/matrices.h"
#include "algebra/matrix_types.h"
#include "algebra/vector_types.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix2 {
    using Native = VtMatrix2;
    static constexpr PyTypeObject &type = Matrix2type;
    static constexpr PyTypeObject &row_type = Vector2type;
    static constexpr char opening[] = "matrix2( ";
    static constexpr char uninitialized[] = "Matrix2 object has not been initialized";
    static PyObject *new_row(const VtVector2 &row) { return newvector2object(row); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix2_get(PyObject *self, Arguments arguments) { return matrices::get<Matrix2>(self, arguments); }
PyObject *matrix2_set(PyObject *self, Arguments arguments) { return matrices::set<Matrix2>(self, arguments); }

PyObject *matrix2_print(PyObject *self) { return matrices::print<Matrix2>(self); }
void matrix2_dealloc(PyObject *self) { dealloc<VtMatrix2>(self); }

PyMethodDef matrix2methods[] = {
    METHOD("get", matrix2_get),
    METHOD("set", matrix2_set),
    METHOD_END,
};

} // namespace

PyTypeObject Matrix2type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix2",
    .tp_basicsize = sizeof(matrix2object),
    .tp_dealloc = matrix2_dealloc,
    .tp_repr = matrix2_print,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix2methods,
};

PyObject *newmatrix2object(VtMatrix2 value) { return matrices::from_value<Matrix2>(value); }
PyObject *newmatrix2object(VtVector2 r0, VtVector2 r1) { return newmatrix2object(VtMatrix2(r0, r1)); }

PyObject *matrix2_new(PyObject *, PyObject *arguments) { return matrices::from_arguments<Matrix2>(arguments); }
