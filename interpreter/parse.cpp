// Arguments into native values: the parts behind the fast path.
#include "interpreter/parse.h"

#include <limits>

namespace parse {

namespace {

// An int, or a float truncated toward zero; false with an error set.
bool to_native_long(PyObject *item, long &value) {
    if (PyFloat_Check(item)) {
        PyObject *truncated = PyLong_FromDouble(PyFloat_AS_DOUBLE(item));
        if (!truncated)
            return false;
        value = PyLong_AsLong(truncated);
        Py_DECREF(truncated);
    } else {
        value = PyLong_AsLong(item);
    }
    return value != -1 || !PyErr_Occurred();
}

bool fits_32_bits(long value) {
    return value >= std::numeric_limits<std::int32_t>::min() && value <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

int to_int(PyObject *item, void *value) {
    long wide;
    if (!to_native_long(item, wide))
        return 0;
    if (!fits_32_bits(wide)) {
        PyErr_SetString(PyExc_OverflowError,
                        wide > 0 ? "signed integer is greater than maximum" : "signed integer is less than minimum");
        return 0;
    }
    *static_cast<int *>(value) = static_cast<int>(wide);
    return 1;
}

int to_long(PyObject *item, void *value) {
    long wide;
    if (!to_native_long(item, wide))
        return 0;
    if (!fits_32_bits(wide)) {
        PyErr_SetString(PyExc_OverflowError, "Python int too large to convert to C long");
        return 0;
    }
    *static_cast<std::int32_t *>(value) = static_cast<std::int32_t>(wide);
    return 1;
}

PyObject *new_tuple(Arguments arguments) {
    PyObject *tuple = PyTuple_New(arguments.count);
    if (!tuple)
        return nullptr;
    for (Py_ssize_t i = 0; i < arguments.count; ++i) {
        Py_INCREF(arguments.items[i]);
        PyTuple_SET_ITEM(tuple, i, arguments.items[i]);
    }
    return tuple;
}

bool is_exactly(PyTypeObject &type, PyObject *item, int position) {
    if (Py_IS_TYPE(item, &type))
        return true;
    PyErr_Format(PyExc_TypeError, "argument %d must be %.50s, not %.50s", position, type.tp_name,
                 Py_TYPE(item)->tp_name);
    return false;
}

} // namespace parse
