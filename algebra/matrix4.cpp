// The Python type matrix4.
#include "algebra/matrices.h"
#include "algebra/matrix_types.h"
#include "algebra/vector_types.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix4 {
    using Native = VtMatrix4;
    static constexpr PyTypeObject &type = Matrix4type;
    static constexpr PyTypeObject &row_type = Vector4type;
    static constexpr char opening[] = "matrix4( ";
    static constexpr char uninitialized[] = "Matrix4 object has not been initialized";
    static PyObject *new_row(const VtVector4 &row) { return newvector4object(row); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix4_get(PyObject *self, Arguments arguments) { return matrices::get<Matrix4>(self, arguments); }
PyObject *matrix4_set(PyObject *self, Arguments arguments) { return matrices::set<Matrix4>(self, arguments); }

PyObject *matrix4_print(PyObject *self) { return matrices::print<Matrix4>(self); }
void matrix4_dealloc(PyObject *self) { dealloc<VtMatrix4>(self); }

PyMethodDef matrix4methods[] = {
    METHOD("get", matrix4_get),
    METHOD("set", matrix4_set),
    METHOD_END,
};

} // namespace

PyTypeObject Matrix4type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix4",
    .tp_basicsize = sizeof(matrix4object),
    .tp_dealloc = matrix4_dealloc,
    .tp_repr = matrix4_print,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix4methods,
};

PyObject *newmatrix4object(VtMatrix4 value) { return matrices::from_value<Matrix4>(value); }
PyObject *newmatrix4object(VtVector4 r0, VtVector4 r1, VtVector4 r2, VtVector4 r3) {
    return newmatrix4object(VtMatrix4(r0, r1, r2, r3));
}

PyObject *matrix4_new(PyObject *, PyObject *arguments) { return matrices::from_arguments<Matrix4>(arguments); }
