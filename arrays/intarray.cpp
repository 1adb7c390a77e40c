// The Python type intarray.
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct IntArray {
    using Element = VtLong;
    using Take = TakeLong;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = intarraytype;
    static constexpr char opening[] = "[intarray ";
    static constexpr char uninitialized[] = "intarray object has not been initialized";
    static PyObject *give(VtLong element) { return PyLong_FromLong(element); }
    static void write(Text &text, VtLong element) { text << element; }
    static PyObject *error_object() { return VantorError; }
};

PyObject *intarray_get(PyObject *self, Arguments arguments) { return arrays::get<IntArray>(self, arguments); }
PyObject *intarray_set(PyObject *self, Arguments arguments) { return arrays::set<IntArray>(self, arguments); }
PyObject *intarray_add(PyObject *self, Arguments arguments) { return arrays::add<IntArray>(self, arguments); }
PyObject *intarray_get_size(PyObject *self, Arguments) { return arrays::get_size<IntArray>(self); }
PyObject *intarray_set_size(PyObject *self, Arguments arguments) { return arrays::set_size<IntArray>(self, arguments); }

Py_ssize_t intarray_length(PyObject *self) { return arrays::length<IntArray>(self); }
PyObject *intarray_item(PyObject *self, Py_ssize_t i) { return arrays::item<IntArray>(self, i); }
int intarray_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<IntArray>(self, i, value);
}

PyObject *intarray_print(PyObject *self) { return arrays::print<IntArray>(self); }
void intarray_dealloc(PyObject *self) { dealloc<OwnedArray<VtLong>>(self); }

PyMethodDef intarraymethods[] = {
    METHOD("get", intarray_get),          METHOD("set", intarray_set),          METHOD("add", intarray_add),
    METHOD("getSize", intarray_get_size), METHOD("setSize", intarray_set_size), METHOD_END,
};

PySequenceMethods intarray_as_sequence = {
    .sq_length = intarray_length,
    .sq_item = intarray_item,
    .sq_ass_item = intarray_ass_item,
};

} // namespace

PyTypeObject intarraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "intarray",
    .tp_basicsize = sizeof(intarrayobject),
    .tp_dealloc = intarray_dealloc,
    .tp_repr = intarray_print,
    .tp_as_sequence = &intarray_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = intarraymethods,
};

PyObject *newintarrayobject() { return arrays::create<IntArray>(); }

PyObject *intarray_new(PyObject *, PyObject *) { return newintarrayobject(); }
