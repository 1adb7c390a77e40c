// The Python type vector2array.
#include "algebra/printed_rows.h"
#include "algebra/vector_types.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector2Array {
    using Element = VtVector2;
    using Take = TakeObject<VtVector2, Vector2type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = vector2arraytype;
    static constexpr char opening[] = "[vector2array ";
    static constexpr char uninitialized[] = "vector2array object has not been initialized";
    static PyObject *give(const VtVector2 &element) { return newvector2object(element); }
    static void write(Text &text, const VtVector2 &element) { ::write(text, element, "( ", " )"); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector2array_get(PyObject *self, Arguments arguments) { return arrays::get<Vector2Array>(self, arguments); }
PyObject *vector2array_set(PyObject *self, Arguments arguments) { return arrays::set<Vector2Array>(self, arguments); }
PyObject *vector2array_add(PyObject *self, Arguments arguments) { return arrays::add<Vector2Array>(self, arguments); }
PyObject *vector2array_get_size(PyObject *self, Arguments) { return arrays::get_size<Vector2Array>(self); }
PyObject *vector2array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Vector2Array>(self, arguments);
}

Py_ssize_t vector2array_length(PyObject *self) { return arrays::length<Vector2Array>(self); }
PyObject *vector2array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Vector2Array>(self, i); }
int vector2array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Vector2Array>(self, i, value);
}

PyObject *vector2array_print(PyObject *self) { return arrays::print<Vector2Array>(self); }
void vector2array_dealloc(PyObject *self) { dealloc<OwnedArray<VtVector2>>(self); }

PyMethodDef vector2arraymethods[] = {
    METHOD("get", vector2array_get),          METHOD("set", vector2array_set),          METHOD("add", vector2array_add),
    METHOD("getSize", vector2array_get_size), METHOD("setSize", vector2array_set_size), METHOD_END,
};

PySequenceMethods vector2array_as_sequence = {
    .sq_length = vector2array_length,
    .sq_item = vector2array_item,
    .sq_ass_item = vector2array_ass_item,
};

} // namespace

PyTypeObject vector2arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector2array",
    .tp_basicsize = sizeof(vector2arrayobject),
    .tp_dealloc = vector2array_dealloc,
    .tp_repr = vector2array_print,
    .tp_as_sequence = &vector2array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector2arraymethods,
};

PyObject *newvector2arrayobject() { return arrays::create<Vector2Array>(); }

PyObject *vector2array_new(PyObject *, PyObject *) { return newvector2arrayobject(); }
