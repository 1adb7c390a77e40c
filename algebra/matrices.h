// The bodies that matrix2, matrix3 and matrix4 share. Each type's own names, texts and tables stand in its own file.
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
//     type, row_type         the type objects of the matrix and of its rows
//     new_row                makes a Python object of a row
//     opening                what the printed form begins with
//     uninitialized          the methods' message on a null native pointer
//     error_object()         the VantorError of the member's file
//
// Matrices work on whole rows and are no sequences. They have no index error: for a row outside the matrix, get gives a
// zero row and set stores nothing.
namespace matrices {

template <class M> using Row = typename M::Native::Row;

/// A new matrix with the given value.
template <class M> PyObject *from_value(const typename M::Native &value) {
    return new_object<typename M::Native>(M::type, M::error_object(), value);
}

/// The module function: one vector for each row.
template <class M> PyObject *from_arguments(PyObject *arguments) {
    return []<std::size_t... I>(PyObject * given, std::index_sequence<I...>)->PyObject * {
        std::array<PyObject *, sizeof...(I)> row;
        if (!parse::module_tuple(given, parse::Object{M::row_type, row[I]}...))
            return nullptr;

        return new_object<typename M::Native>(M::type, M::error_object(), *native<Row<M>>(row[I])...);
    }
    (arguments, std::make_index_sequence<M::Native::dimension>());
}

template <class M> bool in_range(int i) {
    return static_cast<unsigned>(i) < static_cast<unsigned>(M::Native::dimension);
}

template <class M> typename M::Native *checked(PyObject *self) {
    auto *matrix = native<typename M::Native>(self);
    if (!matrix)
        errors::module_error(M::error_object(), M::uninitialized);
    return matrix;
}

template <class M> PyObject *get(PyObject *self, Arguments arguments) {
    const auto *matrix = checked<M>(self);
    int i;
    if (!matrix || !parse::bare(arguments, parse::Index{i}))
        return nullptr;
    if (!in_range<M>(i))
        return M::new_row(Row<M>());

    return M::new_row((*matrix)[i]);
}

template <class M> PyObject *set(PyObject *self, Arguments arguments) {
    auto *matrix = checked<M>(self);
    int i;
    PyObject *row;
    if (!matrix || !parse::tuple(arguments, parse::Index{i}, parse::Object{M::row_type, row}))
        return nullptr;

    if (in_range<M>(i))
        (*matrix)[i] = *native<Row<M>>(row);
    return itself(self);
}

/// "matrix2( (1, 2), (3, 4) )"
template <class M> PyObject *print(PyObject *self) {
    Text text;
    text << M::opening;
    write_rows(text, *native<typename M::Native>(self), "(", ")");
    return (text << " )").finish();
}

} // namespace matrices
