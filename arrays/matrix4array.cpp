// The Python type matrix4array.
#include "algebra/matrix_types.h"
#include "algebra/printed_rows.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix4Array {
    using Element = VtMatrix4;
    using Take = TakeObject<VtMatrix4, Matrix4type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = matrix4arraytype;
    static constexpr char opening[] = "[matrix4array ";
    static constexpr char uninitialized[] = "matrix4array object has not been initialized";
    static PyObject *give(const VtMatrix4 &element) { return newmatrix4object(element); }
    static void write(Text &text, const VtMatrix4 &element) {
        text << "[ ";
        write_rows(text, element, "( ", " )");
        text << " ]";
    }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix4array_get(PyObject *self, Arguments arguments) { return arrays::get<Matrix4Array>(self, arguments); }
PyObject *matrix4array_set(PyObject *self, Arguments arguments) { return arrays::set<Matrix4Array>(self, arguments); }
PyObject *matrix4array_add(PyObject *self, Arguments arguments) { return arrays::add<Matrix4Array>(self, arguments); }
PyObject *matrix4array_get_size(PyObject *self, Arguments) { return arrays::get_size<Matrix4Array>(self); }
PyObject *matrix4array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Matrix4Array>(self, arguments);
}

Py_ssize_t matrix4array_length(PyObject *self) { return arrays::length<Matrix4Array>(self); }
PyObject *matrix4array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Matrix4Array>(self, i); }
int matrix4array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Matrix4Array>(self, i, value);
}

PyObject *matrix4array_print(PyObject *self) { return arrays::print<Matrix4Array>(self); }
void matrix4array_dealloc(PyObject *self) { dealloc<OwnedArray<VtMatrix4>>(self); }

PyMethodDef matrix4arraymethods[] = {
    METHOD("get", matrix4array_get),          METHOD("set", matrix4array_set),          METHOD("add", matrix4array_add),
    METHOD("getSize", matrix4array_get_size), METHOD("setSize", matrix4array_set_size), METHOD_END,
};

PySequenceMethods matrix4array_as_sequence = {
    .sq_length = matrix4array_length,
    .sq_item = matrix4array_item,
    .sq_ass_item = matrix4array_ass_item,
};

} // namespace

PyTypeObject matrix4arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix4array",
    .tp_basicsize = sizeof(matrix4arrayobject),
    .tp_dealloc = matrix4array_dealloc,
    .tp_repr = matrix4array_print,
    .tp_as_sequence = &matrix4array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix4arraymethods,
};

PyObject *newmatrix4arrayobject() { return arrays::create<Matrix4Array>(); }

PyObject *matrix4array_new(PyObject *, PyObject *) { return newmatrix4arrayobject(); }
