// The Python type vector4.
#include "algebra/vector_types.h"
#include "algebra/vectors.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector4 {
    using Native = VtVector4;
    static constexpr PyTypeObject &type = Vector4type;
    static constexpr char opening[] = "vector4( ";
    static constexpr char uninitialized[] = "Vector4 object has not been initialized";
    static constexpr char no_length[] =
        "vector2 object has not been initialized"; // vector2, in all three types: intended
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector4_get(PyObject *self, Arguments arguments) { return vectors::get<Vector4>(self, arguments); }
PyObject *vector4_set(PyObject *self, Arguments arguments) { return vectors::set<Vector4>(self, arguments); }
PyObject *vector4_length(PyObject *self, Arguments) { return vectors::length<Vector4>(self); }
PyObject *vector4_sqlength(PyObject *self, Arguments) { return vectors::sqlength<Vector4>(self); }
PyObject *vector4_normalize(PyObject *self, Arguments) { return vectors::normalize<Vector4>(self); }

Py_ssize_t vector4_sequence_length(PyObject *self) { return vectors::sequence_length<Vector4>(self); }
PyObject *vector4_item(PyObject *self, Py_ssize_t i) { return vectors::item<Vector4>(self, i); }
int vector4_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return vectors::assign_item<Vector4>(self, i, value);
}

PyObject *vector4_print(PyObject *self) { return vectors::print<Vector4>(self); }
void vector4_dealloc(PyObject *self) { dealloc<VtVector4>(self); }

PyMethodDef vector4methods[] = {
    METHOD("get", vector4_get),
    METHOD("set", vector4_set),
    METHOD("length", vector4_length),
    METHOD("sqlength", vector4_sqlength),
    METHOD("normalize", vector4_normalize),
    METHOD_END,
};

PySequenceMethods vector4_as_sequence = {
    .sq_length = vector4_sequence_length,
    .sq_item = vector4_item,
    .sq_ass_item = vector4_ass_item,
};

} // namespace

PyTypeObject Vector4type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector4",
    .tp_basicsize = sizeof(vector4object),
    .tp_dealloc = vector4_dealloc,
    .tp_repr = vector4_print,
    .tp_as_sequence = &vector4_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector4methods,
};

PyObject *newvector4object(VtVector4 value) { return vectors::from_value<Vector4>(value); }
PyObject *newvector4object(double x, double y, double z, double w) { return newvector4object(VtVector4(x, y, z, w)); }

PyObject *vector4_new(PyObject *, PyObject *arguments) { return vectors::from_arguments<Vector4>(arguments); }
