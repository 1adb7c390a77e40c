// The Python type floatarray.
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct FloatArray {
    using Element = double;
    using Take = TakeReal;
    using TakeItem = TakeLong; // a[i] = 2.7 stores 2.0, where set and add take fractions: intended
    static constexpr PyTypeObject &type = floatarraytype;
    static constexpr char opening[] = "[floatarray ";
    static constexpr char uninitialized[] = "floatarray object has not been initialized";
    static PyObject *give(double element) { return PyFloat_FromDouble(element); }
    static void write(Text &text, double element) { text << element; }
    static PyObject *error_object() { return VantorError; }
};

PyObject *floatarray_get(PyObject *self, Arguments arguments) { return arrays::get<FloatArray>(self, arguments); }
PyObject *floatarray_set(PyObject *self, Arguments arguments) { return arrays::set<FloatArray>(self, arguments); }
PyObject *floatarray_add(PyObject *self, Arguments arguments) { return arrays::add<FloatArray>(self, arguments); }
PyObject *floatarray_get_size(PyObject *self, Arguments) { return arrays::get_size<FloatArray>(self); }
PyObject *floatarray_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<FloatArray>(self, arguments);
}

Py_ssize_t floatarray_length(PyObject *self) { return arrays::length<FloatArray>(self); }
PyObject *floatarray_item(PyObject *self, Py_ssize_t i) { return arrays::item<FloatArray>(self, i); }
int floatarray_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<FloatArray>(self, i, value);
}

PyObject *floatarray_print(PyObject *self) { return arrays::print<FloatArray>(self); }
void floatarray_dealloc(PyObject *self) { dealloc<OwnedArray<double>>(self); }

PyMethodDef floatarraymethods[] = {
    METHOD("get", floatarray_get),          METHOD("set", floatarray_set),          METHOD("add", floatarray_add),
    METHOD("getSize", floatarray_get_size), METHOD("setSize", floatarray_set_size), METHOD_END,
};

PySequenceMethods floatarray_as_sequence = {
    .sq_length = floatarray_length,
    .sq_item = floatarray_item,
    .sq_ass_item = floatarray_ass_item,
};

} // namespace

PyTypeObject floatarraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "floatarray",
    .tp_basicsize = sizeof(floatarrayobject),
    .tp_dealloc = floatarray_dealloc,
    .tp_repr = floatarray_print,
    .tp_as_sequence = &floatarray_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = floatarraymethods,
};

PyObject *newfloatarrayobject() { return arrays::create<FloatArray>(); }

PyObject *floatarray_new(PyObject *, PyObject *) { return newfloatarrayobject(); }
