// The bodies that vector2, vector3 and vector4 share. Each type's own names, texts and tables stand in its own file.
#pragma once

#include "algebra/printed_rows.h"
#include "interpreter/arguments.h"
#include "interpreter/object.h"
#include "interpreter/parse.h"

#include <array>
#include <cstddef>
#include <utility>

// A member of the family is a record of its differences:
//
//     Native                 the value class
//     type                   the type object
//     opening                what the printed form begins with
//     uninitialized          the methods' message on a null native pointer
//     no_length              the length slot's message on a null native pointer
//     error_object()         the VantorError of the member's file
//
// Methods test the native pointer before they look at an argument; item and item assignment do not test it.
namespace vectors {

/// A new vector with the given value.
template <class V> PyObject *from_value(const typename V::Native &value) {
    return new_object<typename V::Native>(V::type, V::error_object(), value);
}

/// The module function: one number for each component.
template <class V> PyObject *from_arguments(PyObject *arguments) {
    return []<std::size_t... I>(PyObject * given, std::index_sequence<I...>)->PyObject * {
        std::array<double, sizeof...(I)> component;
        if (!parse::module_tuple(given, parse::Real{component[I]}...))
            return nullptr;

        return new_object<typename V::Native>(V::type, V::error_object(), component[I]...);
    }
    (arguments, std::make_index_sequence<V::Native::dimension>());
}

// Compared as unsigned: one test refuses negative and too large.
template <class V> bool in_range(Py_ssize_t i) {
    return static_cast<std::size_t>(i) < static_cast<std::size_t>(V::Native::dimension);
}

template <class V> typename V::Native *checked(PyObject *self) {
    auto *vector = native<typename V::Native>(self);
    if (!vector)
        errors::module_error(V::error_object(), V::uninitialized);
    return vector;
}

template <class V> PyObject *get(PyObject *self, Arguments arguments) {
    const auto *vector = checked<V>(self);
    int i;
    if (!vector || !parse::bare(arguments, parse::Index{i}))
        return nullptr;
    if (!in_range<V>(i))
        return errors::index_out_of_bounds();

    return PyFloat_FromDouble((*vector)[i]);
}

template <class V> PyObject *set(PyObject *self, Arguments arguments) {
    auto *vector = checked<V>(self);
    int i;
    double component;
    if (!vector || !parse::tuple(arguments, parse::Index{i}, parse::Real{component}))
        return nullptr;
    if (!in_range<V>(i))
        return errors::index_out_of_bounds();

    (*vector)[i] = component;
    return itself(self);
}

template <class V> PyObject *length(PyObject *self) {
    const auto *vector = checked<V>(self);
    return vector ? PyFloat_FromDouble(vector->Length()) : nullptr;
}

template <class V> PyObject *sqlength(PyObject *self) {
    const auto *vector = checked<V>(self);
    return vector ? PyFloat_FromDouble(vector->SqLength()) : nullptr;
}

template <class V> PyObject *normalize(PyObject *self) {
    auto *vector = checked<V>(self);
    if (!vector)
        return nullptr;

    vector->Normalize();
    return itself(self);
}

template <class V> Py_ssize_t sequence_length(PyObject *self) {
    if (native<typename V::Native>(self))
        return V::Native::dimension;
    errors::module_error(V::error_object(), V::no_length);
    return -1;
}

template <class V> PyObject *item(PyObject *self, Py_ssize_t i) {
    if (!in_range<V>(i))
        return errors::index_out_of_bounds();
    return PyFloat_FromDouble((*native<typename V::Native>(self))[static_cast<int>(i)]);
}

/// Also deletion, which brings a null value; the parser refuses that.
template <class V> int assign_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    double component;
    if (!in_range<V>(i)) {
        errors::index_out_of_bounds();
        return -1;
    }
    if (!parse::assigned(value, parse::Real{component}))
        return -1;

    (*native<typename V::Native>(self))[static_cast<int>(i)] = component;
    return 0;
}

/// "vector3( 1, 2, 3 )"
template <class V> PyObject *print(PyObject *self) {
    Text text;
    write(text, *native<typename V::Native>(self), V::opening, " )");
    return text.finish();
}

} // namespace vectors
