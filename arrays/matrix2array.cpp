// The Python type matrix2array.
#include "algebra/matrix_types.h"
#include "algebra/printed_rows.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix2Array {
    using Element = VtMatrix2;
    using Take = TakeObject<VtMatrix2, Matrix2type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = matrix2arraytype;
    static constexpr char opening[] = "[matrix2array ";
    static constexpr char uninitialized[] = "matrix2array object has not been initialized";
    static PyObject *give(const VtMatrix2 &element) { return newmatrix2object(element); }
    static void write(Text &text, const VtMatrix2 &element) {
        text << "[ ";
        write_rows(text, element, "( ", " )");
        text << " ]";
    }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix2array_get(PyObject *self, Arguments arguments) { return arrays::get<Matrix2Array>(self, arguments); }
PyObject *matrix2array_set(PyObject *self, Arguments arguments) { return arrays::set<Matrix2Array>(self, arguments); }
PyObject *matrix2array_add(PyObject *self, Arguments arguments) { return arrays::add<Matrix2Array>(self, arguments); }
PyObject *matrix2array_get_size(PyObject *self, Arguments) { return arrays::get_size<Matrix2Array>(self); }
PyObject *matrix2array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Matrix2Array>(self, arguments);
}

Py_ssize_t matrix2array_length(PyObject *self) { return arrays::length<Matrix2Array>(self); }
PyObject *matrix2array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Matrix2Array>(self, i); }
int matrix2array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Matrix2Array>(self, i, value);
}

PyObject *matrix2array_print(PyObject *self) { return arrays::print<Matrix2Array>(self); }
void matrix2array_dealloc(PyObject *self) { dealloc<OwnedArray<VtMatrix2>>(self); }

PyMethodDef matrix2arraymethods[] = {
    METHOD("get", matrix2array_get),          METHOD("set", matrix2array_set),          METHOD("add", matrix2array_add),
    METHOD("getSize", matrix2array_get_size), METHOD("setSize", matrix2array_set_size), METHOD_END,
};

PySequenceMethods matrix2array_as_sequence = {
    .sq_length = matrix2array_length,
    .sq_item = matrix2array_item,
    .sq_ass_item = matrix2array_ass_item,
};

} // namespace

PyTypeObject matrix2arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix2array",
    .tp_basicsize = sizeof(matrix2arrayobject),
    .tp_dealloc = matrix2array_dealloc,
    .tp_repr = matrix2array_print,
    .tp_as_sequence = &matrix2array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix2arraymethods,
};

PyObject *newmatrix2arrayobject() { return arrays::create<Matrix2Array>(); }

PyObject *matrix2array_new(PyObject *, PyObject *) { return newmatrix2arrayobject(); }
