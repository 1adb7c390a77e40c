// The bodies that the nine array types share. Each type's own names, texts and tables stand in its own file.
#pragma once

#include "arrays/owned_array.h"
#include "interpreter/arguments.h"
#include "interpreter/object.h"
#include "interpreter/parse.h"
#include "interpreter/text.h"

#include <cstdint>
#include <limits>

// How an element is taken from a Python object: the target for the parser, and the value after it was parsed.

struct TakeLong {
    VtLong number;
    parse::Long target() { return {number}; }
    VtLong value() const { return number; }
};

struct TakeReal {
    double number;
    parse::Real target() { return {number}; }
    double value() const { return number; }
};

template <class Native, PyTypeObject &Type> struct TakeObject {
    PyObject *object;
    parse::Object target() { return {Type, object}; }
    const Native &value() const { return *native<Native>(object); }
};

// A member of the family is a record of its differences:
//
//     Element                the native element
//     Take                   how set and add take an element: one of the above
//     TakeItem               how item assignment takes one
//     give(element)          makes a Python object of an element
//     write(text, element)   writes an element
//     type                   the type object
//     opening                what the printed form begins with
//     uninitialized          the message on a null native pointer
//     error_object()         the VantorError of the member's file
//
// Methods and the length slot test the native pointer, before they look at an argument; item, item assignment and
// printing do not test it. Elements are always copied, in and out. A value is parsed completely before anything of the
// array is looked up, because parsing may run Python code that changes the array.
namespace arrays {

template <class A> using Container = OwnedArray<typename A::Element>;

template <class A> PyObject *create() { return new_object<Container<A>>(A::type, A::error_object()); }

template <class A> Container<A> *checked(PyObject *self) {
    auto *array = native<Container<A>>(self);
    if (!array)
        errors::module_error(A::error_object(), A::uninitialized);
    return array;
}

/// Whether i is an index; none is in an array of negative size.
template <class T> bool in_range(const OwnedArray<T> &array, std::int64_t i) { return i >= 0 && i < array.Size(); }

template <class A> PyObject *get(PyObject *self, Arguments arguments) {
    auto *array = checked<A>(self);
    VtLong i;
    if (!array || !parse::bare(arguments, parse::Long{i}))
        return nullptr;
    if (!in_range(*array, i))
        return errors::index_out_of_bounds();

    return A::give(array->Read(i));
}

template <class A> PyObject *set(PyObject *self, Arguments arguments) {
    auto *array = checked<A>(self);
    VtLong i;
    typename A::Take taken;
    if (!array || !parse::tuple(arguments, parse::Long{i}, taken.target()))
        return nullptr;
    if (!in_range(*array, i))
        return errors::index_out_of_bounds();

    array->Write(i, taken.value());
    return itself(self);
}

template <class A> PyObject *add(PyObject *self, Arguments arguments) {
    auto *array = checked<A>(self);
    typename A::Take taken;
    if (!array || !parse::bare(arguments, taken.target()))
        return nullptr;

    return array->Append(taken.value()) ? itself(self) : PyErr_NoMemory();
}

template <class A> PyObject *get_size(PyObject *self) {
    const auto *array = checked<A>(self);
    return array ? PyLong_FromLong(array->Size()) : nullptr;
}

template <class A> PyObject *set_size(PyObject *self, Arguments arguments) {
    auto *array = checked<A>(self);
    VtLong size;
    if (!array || !parse::bare(arguments, parse::Long{size}))
        return nullptr;

    return array->Resize(size) ? itself(self) : PyErr_NoMemory();
}

template <class A> Py_ssize_t length(PyObject *self) {
    const auto *array = checked<A>(self);
    if (!array)
        return -1;
    return array->Size() < 0 ? errors::negative_length(A::type.tp_name, array->Size()) : array->Size();
}

template <class A> PyObject *item(PyObject *self, Py_ssize_t i) {
    auto &array = *native<Container<A>>(self);
    if (!in_range(array, i))
        return errors::index_out_of_bounds();

    return A::give(array.Read(static_cast<VtLong>(i)));
}

/// Also deletion, which brings a null value; the parser refuses that.
template <class A> int assign_item(PyObject *self, Py_ssize_t i, PyObject *value) {
    auto &array = *native<Container<A>>(self);
    typename A::TakeItem taken;
    if (!in_range(array, i)) {
        errors::index_out_of_bounds();
        return -1;
    }
    if (!parse::assigned(value, taken.target()))
        return -1;

    array.Write(static_cast<VtLong>(i), taken.value());
    return 0;
}

/// "[vector2array ( 1, 2 ), ( 3, 4 ) ]": the elements, separated by commas, and a blank after the last. An array of
/// negative size shows one element, what a read beyond the storage gives.
template <class A> PyObject *print(PyObject *self) {
    auto &array = *native<Container<A>>(self);
    const VtLong shown = array.Size() < 0 ? 1 : array.Size();
    Text text;
    text << A::opening;
    for (VtLong i = 0; i < shown && !text.failed(); ++i) {
        A::write(text, array.Read(i));
        text << (i < shown - 1 ? ", " : " ");
    }
    return (text << "]").finish();
}

} // namespace arrays
