// The Python type matrix3array.
#include "algebra/matrix_types.h"
#include "algebra/printed_rows.h"
#include "arrays/array_types.h"
#include "arrays/arrays.h"
#include "interpreter/method.h"

namespace {

PyObject *const VantorError = nullptr; // never assigned: see interpreter/errors.h

struct Matrix3Array {
    using Element = VtMatrix3;
    using Take = TakeObject<VtMatrix3, Matrix3type>;
    using TakeItem = Take;
    static constexpr PyTypeObject &type = matrix3arraytype;
    static constexpr char opening[] = "[matrix3array ";
    static constexpr char uninitialized[] = "matrix3array object has not been initialized";
    static PyObject *give(const VtMatrix3 &element) { return newmatrix3object(element); }
    static void write(Text &text, const VtMatrix3 &element) {
        text << "[ ";
        write_rows(text, element, "( ", " )");
        text << " ]";
    }
    static PyObject *error_object() { return VantorError; }
};

PyObject *matrix3array_get(PyObject *self, Arguments arguments) { return arrays::get<Matrix3Array>(self, arguments); }
PyObject *matrix3array_set(PyObject *self, Arguments arguments) { return arrays::set<Matrix3Array>(self, arguments); }
PyObject *matrix3array_add(PyObject *self, Arguments arguments) { return arrays::add<Matrix3Array>(self, arguments); }
PyObject *matrix3array_get_size(PyObject *self, Arguments) { return arrays::get_size<Matrix3Array>(self); }
PyObject *matrix3array_set_size(PyObject *self, Arguments arguments) {
    return arrays::set_size<Matrix3Array>(self, arguments);
}

Py_ssize_t matrix3array_length(PyObject *self) { return arrays::length<Matrix3Array>(self); }
PyObject *matrix3array_item(PyObject *self, Py_ssize_t i) { return arrays::item<Matrix3Array>(self, i); }
int matrix3array_ass_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    return arrays::assign_item<Matrix3Array>(self, i, value);
}

PyObject *matrix3array_print(PyObject *self) { return arrays::print<Matrix3Array>(self); }
void matrix3array_dealloc(PyObject *self) { dealloc<OwnedArray<VtMatrix3>>(self); }

PyMethodDef matrix3arraymethods[] = {
    METHOD("get", matrix3array_get),          METHOD("set", matrix3array_set),          METHOD("add", matrix3array_add),
    METHOD("getSize", matrix3array_get_size), METHOD("setSize", matrix3array_set_size), METHOD_END,
};

PySequenceMethods matrix3array_as_sequence = {
    .sq_length = matrix3array_length,
    .sq_item = matrix3array_item,
    .sq_ass_item = matrix3array_ass_item,
};

} // namespace

PyTypeObject matrix3arraytype = {
    .ob_base = PyVarObject_HEAD_INIT(nullptr, 0) // brings its own comma
                   .tp_name = "matrix3array",
    .tp_basicsize = sizeof(matrix3arrayobject),
    .tp_dealloc = matrix3array_dealloc,
    .tp_repr = matrix3array_print,
    .tp_as_sequence = &matrix3array_as_sequence,
    .tp_flags = Py_TPFLAGS_DEFAULT,
    .tp_methods = matrix3arraymethods,
};

PyObject *newmatrix3arrayobject() { return arrays::create<Matrix3Array>(); }

PyObject *matrix3array_new(PyObject *, PyObject *) { return newmatrix3arrayobject(); }
