// The Python type vector2.
#include "algebra/vector_types.h"
#include "algebra/vectors.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector2 {
    using Native = VtVector2;
    static constexpr PyTypeObject &type = Vector2type;
    static constexpr char opening[] = "vector2( ";
    static constexpr char uninitialized[] = "Vector2 object has not been initialized";
    static constexpr char no_length[] = "vector2 object has not been initialized";
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector2_get(PyObject *self, Arguments arguments) { return vectors::get<Vector2>(self, arguments); }
PyObject *vector2_set(PyObject *self, Arguments arguments) { return vectors::set<Vector2>(self, arguments); }
PyObject *vector2_length(PyObject *self, Arguments) { return vectors::length<Vector2>(self); }
PyObject *vector2_sqlength(PyObject *self, Arguments) { return vectors::sqlength<Vector2>(self); }
PyObject *vector2_normalize(PyObject *self, Arguments) { return vectors::normalize<Vector2>(self); }

Py_ssize_t vector2_sequence_length(PyObject *self) { return vectors::sequence_length<Vector2>(self); }
PyObject *vector2_item(PyObject *self, Py_ssize_t i) { return vectors::item<Vector2>(self, i); }
int vector2_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return vectors::assign_item<Vector2>(self, i, value);
}

PyObject *vector2_print(PyObject *self) { return vectors::print<Vector2>(self); }
void vector2_dealloc(PyObject *self) { dealloc<VtVector2>(self); }

PyMethodDef vector2methods[] = {
    METHOD("get", vector2_get),
    METHOD("set", vector2_set),
    METHOD("length", vector2_length),
    METHOD("sqlength", vector2_sqlength),
    METHOD("normalize", vector2_normalize),
    METHOD_END,
};

PySequenceMethods vector2_as_sequence = {
    .sq_length = vector2_sequence_length,
    .sq_item = vector2_item,
    .sq_ass_item = vector2_ass_item,
};

} // namespace

PyTypeObject Vector2type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector2",
    .tp_basicsize = sizeof(vector2object),
    .tp_dealloc = vector2_dealloc,
    .tp_repr = vector2_print,
    .tp_as_sequence = &vector2_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector2methods,
};

PyObject *newvector2object(VtVector2 value) { return vectors::from_value<Vector2>(value); }
PyObject *newvector2object(double x, double y) { return newvector2object(VtVector2(x, y)); }

PyObject *vector2_new(PyObject *, PyObject *arguments) { return vectors::from_arguments<Vector2>(arguments); }
