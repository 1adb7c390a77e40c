// Values: Python's numbers into the module's values and arrays, and back.
#include "vantor/native/values.h"

#include "vantor/native/module_types.h"
#include "vantor/native/numbers.h"
#include "vantor/native/reference.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

PyObject *shape_error(const std::vector<Py_ssize_t> &expected, const std::vector<Py_ssize_t> &given) {
    PyErr_Format(PyExc_ValueError, "expected the shape %s, got %s", text_of_shape(expected).c_str(),
                 text_of_shape(given).c_str());
    return nullptr;
}

PyObject *tuple_of(const std::vector<Py_ssize_t> &lengths) {
    Reference tuple(PyTuple_New(static_cast<Py_ssize_t>(lengths.size())));
    for (std::size_t i = 0; tuple && i < lengths.size(); ++i) {
        PyObject *length = PyLong_FromSsize_t(lengths[i]);
        if (!length)
            return nullptr;
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), length);
    }
    return tuple.release();
}

// How many elements of an array there are; -1 with an error set if their shape is another. Integers are taken in any
// shape: rows of indices, one for each face.
Py_ssize_t element_count(const ArrayType &type, const Numbers &given) {
    const std::vector<Py_ssize_t> &shape = given.shape();
    const bool is_empty = shape.size() == 1 && shape[0] == 0;
    if (is_empty)
        return 0;
    Py_ssize_t count = -1;
    if (type.holds_integers && !shape.empty())
        count = given.count();
    else if (shape.size() == type.row_shape.size() + 1 &&
             std::equal(type.row_shape.begin(), type.row_shape.end(), shape.begin() + 1))
        count = shape[0];
    if (count < 0) {
        std::vector<Py_ssize_t> expected{-1};
        expected.insert(expected.end(), type.row_shape.begin(), type.row_shape.end());
        shape_error(expected, shape);
    } else if (count > std::numeric_limits<VtLong>::max()) {
        PyErr_SetString(PyExc_OverflowError, "an array holds at most 2147483647 elements");
        count = -1;
    }
    return count;
}

} // namespace

PyObject *to_array(PyObject *, PyObject *arguments) {
    const char *name;
    PyObject *value;
    if (!PyArg_ParseTuple(arguments, "sO", &name, &value))
        return nullptr;
    const ArrayType *type = array_type_named(name);
    Numbers given;
    if (!type || !given.read(value))
        return nullptr;
    const Py_ssize_t count = element_count(*type, given);
    if (count < 0)
        return nullptr;
    Reference array(PyObject_CallNoArgs(type->factory));
    return array && type->fill(array.get(), given, count) ? array.release() : nullptr;
}

PyObject *from_array(PyObject *, PyObject *array) {
    const ArrayType *type = array_type_of(array);
    if (!type) {
        PyErr_Format(PyExc_TypeError, "expected an array of the module vantorPM, got %.100s", Py_TYPE(array)->tp_name);
        return nullptr;
    }
    Reference bytes(type->bytes_of(array));
    if (!bytes)
        return nullptr;
    Py_ssize_t element = type->holds_integers ? sizeof(VtLong) : sizeof(double);
    for (const Py_ssize_t length : type->row_shape)
        element *= length;
    std::vector<Py_ssize_t> shape{PyByteArray_GET_SIZE(bytes.get()) / element};
    shape.insert(shape.end(), type->row_shape.begin(), type->row_shape.end());
    Reference lengths(tuple_of(shape));
    return lengths
               ? Py_BuildValue("NsN", bytes.release(), type->holds_integers ? "int32" : "float64", lengths.release())
               : nullptr;
}

PyObject *to_transform(PyObject *, PyObject *value) {
    Numbers given;
    if (!given.read(value))
        return nullptr;
    const std::vector<Py_ssize_t> expected{4, 4};
    if (given.shape() != expected)
        return shape_error(expected, given.shape());
    double sixteen[16];
    return given.copy_to(sixteen) ? new_transform(sixteen) : nullptr;
}

PyObject *numbers(PyObject *, PyObject *arguments) {
    PyObject *value;
    PyObject *lengths;
    if (!PyArg_ParseTuple(arguments, "OO!", &value, &PyTuple_Type, &lengths))
        return nullptr;
    std::vector<Py_ssize_t> expected;
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(lengths); ++i)
        expected.push_back(PyLong_AsSsize_t(PyTuple_GET_ITEM(lengths, i)));
    Numbers given;
    if (PyErr_Occurred() || !given.read(value))
        return nullptr;
    if (given.shape() != expected)
        return shape_error(expected, given.shape());
    std::vector<double> all(static_cast<std::size_t>(given.count()));
    if (!given.copy_to(all.data()))
        return nullptr;
    Reference tuple(PyTuple_New(given.count()));
    for (std::size_t i = 0; tuple && i < all.size(); ++i) {
        PyObject *number = PyFloat_FromDouble(all[i]);
        if (!number)
            return nullptr;
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(i), number);
    }
    return tuple.release();
}

PyObject *shape(PyObject *, PyObject *value) {
    Numbers given;
    if (!given.read(value))
        return nullptr;
    Reference lengths(tuple_of(given.shape()));
    return lengths ? Py_BuildValue("NO", lengths.release(), given.are_integers() ? Py_True : Py_False) : nullptr;
}

PyObject *float32(PyObject *, PyObject *value) {
    Numbers given;
    if (!given.read(value))
        return nullptr;
    std::vector<double> all(static_cast<std::size_t>(given.count()));
    if (!given.copy_to(all.data()))
        return nullptr;
    constexpr auto size = static_cast<Py_ssize_t>(sizeof(float));
    Reference bytes(PyByteArray_FromStringAndSize(nullptr, given.count() * size));
    Reference lengths(tuple_of(given.shape()));
    if (!bytes || !lengths)
        return nullptr;
    char *to = PyByteArray_AS_STRING(bytes.get());
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto number = static_cast<float>(all[i]);
        std::memcpy(to + i * sizeof number, &number, sizeof number);
    }
    return Py_BuildValue("NNO", bytes.release(), lengths.release(), given.are_integers() ? Py_True : Py_False);
}
