// Numbers: what a Python value holds, be it a buffer or nested sequences.
#include "vantor/native/numbers.h"

#include "vantor/native/module_types.h"
#include "vantor/native/reference.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template <class Source> Source load(const char *from, bool is_swapped) {
    char bytes[sizeof(Source)];
    std::memcpy(bytes, from, sizeof bytes);
    if (is_swapped)
        std::reverse(bytes, bytes + sizeof bytes);
    Source number;
    std::memcpy(&number, bytes, sizeof bytes);
    return number;
}

template <class Target, class Source> bool fits(Source number) {
    if constexpr (std::is_same_v<Target, double>)
        return true;
    else if constexpr (std::is_signed_v<Source>)
        return static_cast<long long>(number) >= std::numeric_limits<Target>::min() &&
               static_cast<long long>(number) <= std::numeric_limits<Target>::max();
    else
        return static_cast<unsigned long long>(number) <=
               static_cast<unsigned long long>(std::numeric_limits<Target>::max());
}

// One row. The stride of dense rows is a constant, so that the compiler makes vector instructions of it.
template <class Source, class Target>
bool copy_row(const char *from, Py_ssize_t count, Py_ssize_t stride, bool is_swapped, Target *to) {
    bool all_fit = true;
    const auto copy = [&](Py_ssize_t step, bool swapped) {
        for (Py_ssize_t i = 0; i < count; ++i) {
            const auto number = load<Source>(from + i * step, swapped);
            all_fit &= fits<Target>(number);
            if constexpr (std::is_same_v<Source, signed char>)
                to[i] = static_cast<Target>(static_cast<double>(number)); // a number, no character
            else
                to[i] = static_cast<Target>(number);
        }
    };
    const bool is_dense = stride == static_cast<Py_ssize_t>(sizeof(Source)) && !is_swapped;
    if (is_dense && std::is_same_v<Source, Target>)
        std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(Target));
    else if (is_dense)
        copy(sizeof(Source), false);
    else
        copy(stride, is_swapped);
    return all_fit;
}

template <class Source, class Target>
bool copy_dimension(const Py_buffer &buffer, int dimension, const char *from, bool is_swapped, Target *&to) {
    const Py_ssize_t length = buffer.shape[dimension];
    const Py_ssize_t stride = buffer.strides[dimension];
    if (dimension == buffer.ndim - 1) {
        const bool all_fit = copy_row<Source>(from, length, stride, is_swapped, to);
        to += length;
        return all_fit;
    }
    bool all_fit = true;
    for (Py_ssize_t i = 0; i < length; ++i)
        all_fit &= copy_dimension<Source>(buffer, dimension + 1, from + i * stride, is_swapped, to);
    return all_fit;
}

template <class Source, class Target> bool copy_buffer(const Py_buffer &buffer, bool is_swapped, Target *to) {
    // Conversions of numbers that do not fit are refused afterwards; that of a float to an integer never comes here.
    if constexpr (std::is_floating_point_v<Source> && !std::is_floating_point_v<Target>) {
        return false;
    } else {
        const auto *from = static_cast<const char *>(buffer.buf);
        if (PyBuffer_IsContiguous(&buffer, 'C'))
            return copy_row<Source>(from, buffer.len / buffer.itemsize, buffer.itemsize, is_swapped, to);
        return copy_dimension<Source>(buffer, 0, from, is_swapped, to);
    }
}

// Calls action with a value of the C type of a format character; false if it is none of a number.
template <class Action> bool with_type_of(char format, Action action) {
    switch (format) {
    case 'b':
        return action(static_cast<signed char>(0));
    case 'B':
        return action(static_cast<unsigned char>(0));
    case 'h':
        return action(static_cast<short>(0));
    case 'H':
        return action(static_cast<unsigned short>(0));
    case 'i':
        return action(0);
    case 'I':
        return action(0U);
    case 'l':
        return action(0L);
    case 'L':
        return action(0UL);
    case 'q':
        return action(0LL);
    case 'Q':
        return action(0ULL);
    case 'f':
        return action(0.0f);
    case 'd':
        return action(0.0);
    default:
        return false;
    }
}

// A format of the buffer protocol as one character and a byte order; 0 if it is not of one number. With an explicit
// byte order, "l" has four bytes.
char number_format(const char *text, Py_ssize_t item_size, bool &is_swapped) {
    const char *format = text ? text : "B";
    const char order = std::strchr("@=<>!", *format) && *format ? *format++ : '@';
    const bool is_big = order == '>' || order == '!';
    const bool has_own_order = is_big || order == '<';
    is_swapped = has_own_order && is_big == (std::endian::native == std::endian::little);
    if (!format[0] || format[1])
        return '\0';
    const bool is_standard = order != '@';
    const char name = is_standard && *format == 'l' ? 'i' : is_standard && *format == 'L' ? 'I' : *format;
    const bool has_size =
        with_type_of(name, [=](auto number) { return static_cast<Py_ssize_t>(sizeof number) == item_size; });
    return has_size ? name : '\0';
}

} // namespace

Numbers::~Numbers() {
    if (buffer.obj)
        PyBuffer_Release(&buffer);
}

Py_ssize_t Numbers::count() const {
    Py_ssize_t product = 1;
    for (const Py_ssize_t length : lengths)
        product *= length;
    return product;
}

bool Numbers::read(PyObject *value) {
    if (PyObject_CheckBuffer(value) && !PyBytes_Check(value) && !PyByteArray_Check(value))
        return read_buffer(value);
    return gather(value, 0);
}

bool Numbers::read_buffer(PyObject *value) {
    if (PyObject_GetBuffer(value, &buffer, PyBUF_FULL_RO) < 0)
        return false;
    format = buffer.suboffsets ? '\0' : number_format(buffer.format, buffer.itemsize, is_swapped);
    if (!format) {
        PyErr_Format(PyExc_TypeError,
                     "expected numbers (integers, float32 or float64), got elements of the format \"%s\"",
                     buffer.format ? buffer.format : "B");
        return false;
    }
    all_integers = format != 'f' && format != 'd';
    lengths.assign(buffer.shape, buffer.shape + buffer.ndim);
    return true;
}

bool Numbers::enter(Py_ssize_t length, std::size_t depth) {
    constexpr std::size_t deepest = 8; // and a list that contains itself ends here
    if (depth < lengths.size() && lengths[depth] == length)
        return true;
    if (depth == lengths.size() && !has_leaf && depth < deepest) {
        lengths.push_back(length);
        return true;
    }
    if (depth >= lengths.size())
        PyErr_SetString(PyExc_ValueError, "expected rows of numbers, got sequences of different depths");
    else
        PyErr_Format(PyExc_ValueError, "expected rows of one length, got rows of %zd and of %zd", lengths[depth],
                     length);
    return false;
}

bool Numbers::end_at(std::size_t depth) {
    has_leaf = true;
    if (depth == lengths.size())
        return true;
    PyErr_SetString(PyExc_ValueError, "expected rows of numbers, got sequences of different depths");
    return false;
}

bool Numbers::gather_block(const double *numbers, const std::vector<Py_ssize_t> &block, std::size_t depth) {
    for (std::size_t i = 0; i < block.size(); ++i)
        if (!enter(block[i], depth + i))
            return false;
    std::size_t count = 1;
    for (const Py_ssize_t length : block)
        count *= static_cast<std::size_t>(length);
    gathered.insert(gathered.end(), numbers, numbers + count);
    return end_at(depth + block.size());
}

bool Numbers::gather_leaf(PyObject *value, std::size_t depth) {
    if (PyFloat_Check(value)) {
        all_integers = false;
        gathered.push_back(PyFloat_AS_DOUBLE(value));
        return end_at(depth);
    }
    const bool is_bool = PyBool_Check(value);
    if (!is_bool && PyIndex_Check(value)) {
        const Reference integer(PyNumber_Index(value));
        const double number = integer ? PyLong_AsDouble(integer.get()) : -1;
        if (PyErr_Occurred())
            return false;
        gathered.push_back(number);
        return end_at(depth);
    }
    const PyNumberMethods *methods = Py_TYPE(value)->tp_as_number;
    if (!is_bool && methods && methods->nb_float && !PyUnicode_Check(value)) {
        all_integers = false;
        const double number = PyFloat_AsDouble(value);
        if (number == -1 && PyErr_Occurred())
            return false;
        gathered.push_back(number);
        return end_at(depth);
    }
    PyErr_Format(PyExc_TypeError, "expected numbers, got %.100s", Py_TYPE(value)->tp_name);
    return false;
}

bool Numbers::gather(PyObject *value, std::size_t depth) {
    if (PyFloat_Check(value) || PyLong_Check(value))
        return gather_leaf(value, depth);
    if (const ValueType *type = value_type_of(value)) {
        all_integers = false;
        return gather_block(type->numbers_of(value), type->shape, depth);
    }
    const bool is_text = PyUnicode_Check(value) || PyBytes_Check(value) || PyByteArray_Check(value);
    if (!is_text && PyObject_CheckBuffer(value)) {
        Numbers inner;
        if (!inner.read_buffer(value))
            return false;
        all_integers &= inner.all_integers;
        std::vector<double> numbers(static_cast<std::size_t>(inner.count()));
        return inner.copy_to(numbers.data()) && gather_block(numbers.data(), inner.lengths, depth);
    }
    const bool is_sequence = PyList_Check(value) || PyTuple_Check(value) || (!is_text && PySequence_Check(value));
    if (!is_sequence)
        return gather_leaf(value, depth);

    const Reference items(PySequence_Fast(value, "expected a sequence of numbers"));
    if (!items || !enter(PySequence_Fast_GET_SIZE(items.get()), depth))
        return false;
    // The size is asked for again: an element's __float__ may change the list.
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(items.get()); ++i) {
        PyObject *item = PySequence_Fast_GET_ITEM(items.get(), i);
        Py_INCREF(item);
        const Reference held(item);
        if (!gather(item, depth + 1))
            return false;
    }
    if (lengths[depth] != PySequence_Fast_GET_SIZE(items.get())) {
        PyErr_SetString(PyExc_RuntimeError, "the sequence changed its size while it was read");
        return false;
    }
    return true;
}

template <class Target> bool Numbers::copy(Target *to) const {
    constexpr bool wants_integers = !std::is_same_v<Target, double>;
    if (wants_integers && !all_integers && count() > 0) {
        PyErr_SetString(PyExc_TypeError, "expected integers, got numbers with a decimal point");
        return false;
    }
    bool all_fit = true;
    if (buffer.obj) {
        all_fit = count() == 0 || with_type_of(format, [&](auto number) {
                      return copy_buffer<decltype(number)>(buffer, is_swapped, to);
                  });
    } else {
        for (std::size_t i = 0; i < gathered.size(); ++i) {
            const double number = gathered[i];
            if constexpr (wants_integers) {
                const bool is_in_range =
                    number >= std::numeric_limits<Target>::min() && number <= std::numeric_limits<Target>::max();
                all_fit &= is_in_range;
                to[i] = is_in_range ? static_cast<Target>(number) : 0;
            } else {
                to[i] = number;
            }
        }
    }
    if (!all_fit)
        PyErr_SetString(PyExc_OverflowError, "expected integers of 32 bits, got a larger one");
    return all_fit;
}

bool Numbers::copy_to(double *to) const { return copy(to); }
bool Numbers::copy_to(VtLong *to) const { return copy(to); }
