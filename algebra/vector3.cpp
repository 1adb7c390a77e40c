// The Python type vector3.
#include "algebra/vector_types.h"
#include "algebra/vectors.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector3 {
    using Native = VtVector3;
    static constexpr PyTypeObject &type = Vector3type;
    static constexpr char opening[] = "vector3( ";
    static constexpr char uninitialized[] = "Vector3 object has not been initialized";
    static constexpr char no_length[] =
        "vector2 object has not been initialized"; // vector2, in all three types: intended
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector3_get(PyObject *self, Arguments arguments) { return vectors::get<Vector3>(self, arguments); }
PyObject *vector3_set(PyObject *self, Arguments arguments) { return vectors::set<Vector3>(self, arguments); }
PyObject *vector3_length(PyObject *self, Arguments) { return vectors::length<Vector3>(self); }
PyObject *vector3_sqlength(PyObject *self, Arguments) { return vectors::sqlength<Vector3>(self); }
PyObject *vector3_normalize(PyObject *self, Arguments) { return vectors::normalize<Vector3>(self); }

Py_ssize_t vector3_sequence_length(PyObject *self) { return vectors::sequence_length<Vector3>(self); }
PyObject *vector3_item(PyObject *self, Py_ssize_t i) { return vectors::item<Vector3>(self, i); }
int vector3_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return vectors::assign_item<Vector3>(self, i, value);
}

PyObject *vector3_print(PyObject *self) { return vectors::print<Vector3>(self); }
void vector3_dealloc(PyObject *self) { dealloc<VtVector3>(self); }

PyMethodDef vector3methods[] = {
    METHOD("get", vector3_get),
    METHOD("set", vector3_set),
    METHOD("length", vector3_length),
    METHOD("sqlength", vector3_sqlength),
    METHOD("normalize", vector3_normalize),
    METHOD_END,
};

PySequenceMethods vector3_as_sequence = {
    .sq_length = vector3_sequence_length,
    .sq_item = vector3_item,
    .sq_ass_item = vector3_ass_item,
};

} // namespace

PyTypeObject Vector3type = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector3",
    .tp_basicsize = sizeof(vector3object),
    .tp_dealloc = vector3_dealloc,
    .tp_repr = vector3_print,
    .tp_as_sequence = &vector3_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector3methods,
};

PyObject *newvector3object(VtVector3 value) { return vectors::from_value<Vector3>(value); }
PyObject *newvector3object(double x, double y, double z) { return newvector3object(VtVector3(x, y, z)); }

PyObject *vector3_new(PyObject *, PyObject *arguments) { return vectors::from_arguments<Vector3>(arguments); }
