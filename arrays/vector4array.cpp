// The Python type vector4array.
#include "algebra/printed_rows.h"
#include "algebra/vector_types.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Vector4Array {
    using Element = VtVector4;
    using Take = TakeObject<VtVector4, Vector4type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = vector4arraytype;
    static constexpr char opening[] = "[vector4array ";
    static constexpr char uninitialized[] = "vector4array object has not been initialized";
    static PyObject *give(const VtVector4 &element) { return newvector4object(element); }
    static void write(Text &text, const VtVector4 &element) { ::write(text, element, "( ", " )"); }
    static PyObject *error_object() { return VantorError; }
};

PyObject *vector4array_get(PyObject *self, Arguments arguments) { return arrays::get<Vector4Array>(self, arguments); }
PyObject *vector4array_set(PyObject *self, Arguments arguments) { return arrays::set<Vector4Array>(self, arguments); }
PyObject *vector4array_add(PyObject *self, Arguments arguments) { return arrays::add<Vector4Array>(self, arguments); }
PyObject *vector4array_get_size(PyObject *self, Arguments) { return arrays::get_size<Vector4Array>(self); }
PyObject *vector4array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Vector4Array>(self, arguments);
}

Py_ssize_t vector4array_length(PyObject *self) { return arrays::length<Vector4Array>(self); }
PyObject *vector4array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Vector4Array>(self, i); }
int vector4array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Vector4Array>(self, i, value);
}

PyObject *vector4array_print(PyObject *self) { return arrays::print<Vector4Array>(self); }
void vector4array_dealloc(PyObject *self) { dealloc<OwnedArray<VtVector4>>(self); }

PyMethodDef vector4arraymethods[] = {
    METHOD("get", vector4array_get),          METHOD("set", vector4array_set),          METHOD("add", vector4array_add),
    METHOD("getSize", vector4array_get_size), METHOD("setSize", vector4array_set_size), METHOD_END,
};

PySequenceMethods vector4array_as_sequence = {
    .sq_length = vector4array_length,
    .sq_item = vector4array_item,
    .sq_ass_item = vector4array_ass_item,
};

} // namespace

PyTypeObject vector4arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "vector4array",
    .tp_basicsize = sizeof(vector4arrayobject),
    .tp_dealloc = vector4array_dealloc,
    .tp_repr = vector4array_print,
    .tp_as_sequence = &vector4array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = vector4arraymethods,
};

PyObject *newvector4arrayobject() { return arrays::create<Vector4Array>(); }

PyObject *vector4array_new(PyObject *, PyObject *) { return newvector4arrayobject(); }
