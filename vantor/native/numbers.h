// Numbers: what a Python value holds, be it a buffer or nested sequences.
#pragma once

#include "algebra/vt_base.h"

#include <Python.h>

#include <vector>

/// The numbers of one value: an object with the buffer protocol (of any stride and byte order), a value of the module,
/// a number, or sequences of such in each other.
class Numbers {
  public:
    Numbers() = default;
    Numbers(const Numbers &) = delete;
    Numbers &operator=(const Numbers &) = delete;
    ~Numbers();

    /// Finds the shape. False with an error set if these are no numbers, or sequences of different lengths.
    bool read(PyObject *value);

    const std::vector<Py_ssize_t> &shape() const { return lengths; }
    bool are_integers() const { return all_integers; }
    Py_ssize_t count() const;

    /// Copies all numbers, the last index running fastest. False with an error set: where integers are expected and
    /// these are others, or one does not fit.
    bool copy_to(double *to) const;
    bool copy_to(VtLong *to) const;

  private:
    bool read_buffer(PyObject *value);
    bool gather(PyObject *value, std::size_t depth);
    bool gather_leaf(PyObject *value, std::size_t depth);
    bool gather_block(const double *numbers, const std::vector<Py_ssize_t> &block, std::size_t depth);
    bool enter(Py_ssize_t length, std::size_t depth);
    bool end_at(std::size_t depth);
    template <class Target> bool copy(Target *to) const;

    std::vector<Py_ssize_t> lengths;
    bool all_integers = true;

    Py_buffer buffer = {}; // holds an object where the value is a buffer
    char format = 0;
    bool is_swapped = false;

    std::vector<double> gathered; // of nested sequences; exact for every integer that an array can hold
    bool has_leaf = false;
};
