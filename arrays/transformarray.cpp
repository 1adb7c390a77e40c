// The Python type transformarray.
#include "algebra/printed_rows.h"
#include "algebra/transform_type.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct TransformArray {
    using Element = VtTransform;
    using Take = TakeObject<VtTransform, Transformtype>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = transformarraytype;
    static constexpr char opening[] = "[transformarray ";
    static constexpr char uninitialized[] = "transformarray object has not been initialized";
    static PyObject *give(const VtTransform &element) { return newtransformobject(element); }
    static void write(Text &text, const VtTransform &element) {
        text << "[ ";
        write_rows(text, element.Matrix(), "( ", " )");
        text << " ]";
    }
    static PyObject *error_object() { return VantorError; }
};

PyObject *transformarray_get(PyObject *self, Arguments arguments) {
    return arrays::get<TransformArray>(self, arguments);
}
PyObject *transformarray_set(PyObject *self, Arguments arguments) {
    return arrays::set<TransformArray>(self, arguments);
}
PyObject *transformarray_add(PyObject *self, Arguments arguments) {
    return arrays::add<TransformArray>(self, arguments);
}
PyObject *transformarray_get_size(PyObject *self, Arguments) { return arrays::get_size<TransformArray>(self); }
PyObject *transformarray_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<TransformArray>(self, arguments);
}

Py_ssize_t transformarray_length(PyObject *self) { return arrays::length<TransformArray>(self); }
PyObject *transformarray_item(PyObject *self, Py_ssize_t i) { return arrays::item<TransformArray>(self, i); }
int transformarray_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<TransformArray>(self, i, value);
}

PyObject *transformarray_print(PyObject *self) { return arrays::print<TransformArray>(self); }
void transformarray_dealloc(PyObject *self) { dealloc<OwnedArray<VtTransform>>(self); }

PyMethodDef transformarraymethods[] = {
    METHOD("get", transformarray_get),          METHOD("set", transformarray_set),
    METHOD("add", transformarray_add),          METHOD("getSize", transformarray_get_size),
    METHOD("setSize", transformarray_set_size), METHOD_END,
};

PySequenceMethods transformarray_as_sequence = {
    .sq_length = transformarray_length,
    .sq_item = transformarray_item,
    .sq_ass_item = transformarray_ass_item,
};

} // namespace

PyTypeObject transformarraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "transformarray",
    .tp_basicsize = sizeof(transformarrayobject),
    .tp_dealloc = transformarray_dealloc,
    .tp_repr = transformarray_print,
    .tp_as_sequence = &transformarray_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = transformarraymethods,
};

PyObject *newtransformarrayobject() { return arrays::create<TransformArray>(); }

PyObject *transformarray_new(PyObject *, PyObject *) { return newtransformarrayobject(); }
