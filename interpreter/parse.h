// Arguments into native values: a fast path for exact types, and the interpreter's own parser behind it.
#pragma once

#include "interpreter/arguments.h"

#include <Python.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

// A handler names a target for each argument:
//
//     if (!parse::tuple(arguments, parse::Index{i}, parse::Real{d}))
//         return nullptr;
//
// Each target knows how to take its argument quickly when that has the exact type which scripts nearly always give, and
// what the interpreter's parser needs to take it otherwise. The parser decides and words every error, and so is asked
// about everything that the fast path does not take. It is also the only one for whom a tuple is made.
namespace parse {

// The quick ways. False means: not taken, nothing is set, ask the parser.

[[gnu::always_inline]] inline bool quickly(PyObject *item, std::int32_t &value) {
    if (!PyLong_CheckExact(item))
        return false;
    auto *number = reinterpret_cast<PyLongObject *>(item);
#if PY_VERSION_HEX >= 0x030C0000
    if (!PyUnstable_Long_IsCompact(number))
        return false;
    value = static_cast<std::int32_t>(PyUnstable_Long_CompactValue(number));
#else
    // At most one digit of 30 bits; the size carries the sign.
    const Py_ssize_t size = Py_SIZE(number);
    if (size < -1 || size > 1)
        return false;
    value = size ? static_cast<std::int32_t>(size) * static_cast<std::int32_t>(number->ob_digit[0]) : 0;
#endif
    return true;
}

[[gnu::always_inline]] inline bool quickly(PyObject *item, double &value) {
    if (PyFloat_CheckExact(item)) [[likely]] {
        value = PyFloat_AS_DOUBLE(item);
        return true;
    }
    std::int32_t integer;
    if (!quickly(item, integer))
        return false;
    value = integer;
    return true;
}

/// A float truncated toward zero.
[[gnu::always_inline]] inline bool quickly_truncated(PyObject *item, std::int32_t &value) {
    if (!PyFloat_CheckExact(item))
        return false;
    const double number = PyFloat_AS_DOUBLE(item);
    if (!(number > -2147483649.0 && number < 2147483648.0))
        return false;
    value = static_cast<std::int32_t>(number);
    return true;
}

/// The text of a string without a copy. Not taken: other characters than ASCII, a null character inside.
[[gnu::always_inline]] inline bool quickly(PyObject *item, const char *&text) {
    if (!PyUnicode_CheckExact(item) || !PyUnicode_IS_COMPACT_ASCII(item))
        return false;
    text = static_cast<const char *>(PyUnicode_DATA(item));
    return std::strlen(text) == static_cast<std::size_t>(PyUnicode_GET_LENGTH(item));
}

// Converters for the parser's "O&". An integer is an int or a float, truncated toward zero: early interpreters
// converted so, today's parser refuses floats. Errors are those of int(x) and of the parser.

/// To a C int, as "i". The second argument points to the int.
int to_int(PyObject *item, void *value);
/// To a 32-bit long, as "l". The second argument points to the std::int32_t.
int to_long(PyObject *item, void *value);

// The targets, named after what they take. `format` and parser_arguments() are for the parser.

/// "i": an integer that fits a C int.
struct Index {
    int &value;
    static constexpr char format[] = "O&";
    bool fast(PyObject *item) const { return quickly(item, value); }
    auto parser_arguments() const { return std::tuple(&to_int, &value); }
};

/// "l": an integer that fits the renderer's long of 32 bits.
struct Long {
    std::int32_t &value;
    static constexpr char format[] = "O&";
    bool fast(PyObject *item) const { return quickly(item, value) || quickly_truncated(item, value); }
    auto parser_arguments() const { return std::tuple(&to_long, &value); }
};

/// "d": a number.
struct Real {
    double &value;
    static constexpr char format[] = "d";
    bool fast(PyObject *item) const { return quickly(item, value); }
    auto parser_arguments() const { return std::tuple(&value); }
};

/// "z": a string without a null character inside, or None, which gives a null pointer. Borrowed from the string.
struct TextOrNone {
    const char *&value;
    static constexpr char format[] = "z";
    bool fast(PyObject *item) const {
        if (item != Py_None)
            return quickly(item, value);
        value = nullptr;
        return true;
    }
    auto parser_arguments() const { return std::tuple(&value); }
};

/// "O!": an object of exactly the given type. Borrowed.
struct Object {
    PyTypeObject &type;
    PyObject *&value;
    static constexpr char format[] = "O!";
    bool fast(PyObject *item) const {
        value = item;
        return Py_IS_TYPE(item, &type);
    }
    auto parser_arguments() const { return std::tuple(&type, &value); }
};

/// "|": the targets after it may be missing. They keep the values that they have.
struct Optional {
    static constexpr char format[] = "|";
    bool fast(PyObject *) const { return false; }
    auto parser_arguments() const { return std::tuple(); }
};

// The formats of several targets in a row, as one null-terminated text.
template <class... Targets> constexpr auto joined_format() {
    std::array<char, (0 + ... + (sizeof(Targets::format) - 1)) + 1> joined{};
    std::size_t end = 0;
    auto append = [&](const char *format) {
        while (*format)
            joined[end++] = *format++;
    };
    (append(Targets::format), ...);
    return joined;
}
template <class... Targets> inline constexpr auto format_of = joined_format<Targets...>();

/// The items as a new tuple, for the parser; null with an error set.
PyObject *new_tuple(Arguments arguments);

/// The parser's "O!" lets subclasses pass; this refuses them in the parser's words. The position counts from 1.
bool is_exactly(PyTypeObject &type, PyObject *item, int position);

template <class Target> bool is_exact(const Target &target, int &position) {
    if constexpr (std::is_same_v<Target, Optional>)
        return true;
    ++position;
    if constexpr (std::is_same_v<Target, Object>)
        return is_exactly(target.type, target.value, position);
    return true;
}

// Behind the fast paths. Cold, and never part of a handler: what a handler has to save for these calls, it then saves
// only where it makes them.

// One object, or null for none, as the plain parser of old took it.
template <class Target> [[gnu::cold, gnu::noinline]] bool object_by_parser(PyObject *object, Target target) {
    return std::apply(
        [&](auto... destination) { return PyArg_Parse(object, format_of<Target>.data(), destination...) != 0; },
        target.parser_arguments());
}

template <class Target> [[gnu::cold, gnu::noinline]] bool bare_by_parser(Arguments arguments, Target target) {
    if (arguments.count <= 1)
        return object_by_parser(arguments.count ? arguments.items[0] : nullptr, target);

    PyObject *made = new_tuple(arguments);
    const bool parsed = made && object_by_parser(made, target);
    Py_XDECREF(made);
    return parsed;
}

template <class... Targets> [[gnu::cold, gnu::noinline]] bool tuple_by_parser(PyObject *tuple, Targets... targets) {
    const int parsed = std::apply(
        [&](auto... destination) { return PyArg_ParseTuple(tuple, format_of<Targets...>.data(), destination...); },
        std::tuple_cat(targets.parser_arguments()...));
    int position = 0;
    return parsed && (is_exact(targets, position) && ...);
}

template <class... Targets>
[[gnu::cold, gnu::noinline]] bool spread_by_parser(Arguments arguments, Targets... targets) {
    PyObject *made = new_tuple(arguments);
    const bool parsed = made && tuple_by_parser(made, targets...);
    Py_XDECREF(made);
    return parsed;
}

template <class... Targets>
[[gnu::always_inline]] inline bool all_fast(Arguments arguments, const Targets &...targets) {
    PyObject *const *item = arguments.items;
    return arguments.count == static_cast<Py_ssize_t>(sizeof...(Targets)) && (targets.fast(*item++) && ...);
}

/// A method with one argument: the bare object, as the convention delivers it.
template <class Target> [[gnu::always_inline]] inline bool bare(Arguments arguments, Target target) {
    return all_fast(arguments, target) || bare_by_parser(arguments, target);
}

/// A method with several arguments: their tuple, or the one tuple that was given.
template <class... Targets> [[gnu::always_inline]] inline bool tuple(Arguments arguments, Targets... targets) {
    const Arguments spread = arguments.spread();
    return all_fast(spread, targets...) || spread_by_parser(spread, targets...);
}

/// The value of an item assignment; null, which stands for a deletion, is refused by the parser.
template <class Target> [[gnu::always_inline]] inline bool assigned(PyObject *value, Target target) {
    return (value && target.fast(value)) || object_by_parser(value, target);
}

/// A module function: the argument tuple that the interpreter made.
template <class... Targets> [[gnu::always_inline]] inline bool module_tuple(PyObject *arguments, Targets... targets) {
    return all_fast(Arguments::of_tuple(arguments), targets...) || tuple_by_parser(arguments, targets...);
}

} // namespace parse
