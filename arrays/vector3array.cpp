// The Python type vector3array.
#include "algebra/printed_rows.h"
#include "algebra/vector_types.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector3Array {
    using Element = VtVector3;
    using Take = TakeObject<VtVector3, Vector3type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = vector3arraytype;
    static constexpr char opening[] = "[vector3array ";
    static constexpr char uninitialized[] = "vector3array object has not been initialized";
    static PyObject *give(const VtVector3 &element) { return newvector3object(element); }
    static void write(Text &text, const VtVector3 &element) { ::write(text, element, "( ", " )"); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector3array_get(PyObject *self, Arguments arguments) { return arrays::get<Vector3Array>(self, arguments); }
PyObject *vector3array_set(PyObject *self, Arguments arguments) { return arrays::set<Vector3Array>(self, arguments); }
PyObject *vector3array_add(PyObject *self, Arguments arguments) { return arrays::add<Vector3Array>(self, arguments); }
PyObject *vector3array_get_size(PyObject *self, Arguments) { return arrays::get_size<Vector3Array>(self); }
PyObject *vector3array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Vector3Array>(self, arguments);
}

Py_ssize_t vector3array_length(PyObject *self) { return arrays::length<Vector3Array>(self); }
PyObject *vector3array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Vector3Array>(self, i); }
int vector3array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Vector3Array>(self, i, value);
}

PyObject *vector3array_print(PyObject *self) { return arrays::print<Vector3Array>(self); }
void vector3array_dealloc(PyObject *self) { dealloc<OwnedArray<VtVector3>>(self); }

PyMethodDef vector3arraymethods[] = {
    METHOD("get", vector3array_get),          METHOD("set", vector3array_set),          METHOD("add", vector3array_add),
    METHOD("getSize", vector3array_get_size), METHOD("setSize", vector3array_set_size), METHOD_END,
};

PySequenceMethods vector3array_as_sequence = {
    .sq_length = vector3array_length,
    .sq_item = vector3array_item,
    .sq_ass_item = vector3array_ass_item,
};

} // namespace

PyTypeObject vector3arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector3array",
    .tp_basicsize = sizeof(vector3arrayobject),
    .tp_dealloc = vector3array_dealloc,
    .tp_repr = vector3array_print,
    .tp_as_sequence = &vector3array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector3arraymethods,
};

PyObject *newvector3arrayobject() { return arrays::create<Vector3Array>(); }

PyObject *vector3array_new(PyObject *, PyObject *) { return newvector3arrayobject(); }
