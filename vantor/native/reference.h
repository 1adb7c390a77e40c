// Reference: a counted reference to a Python object.
#pragma once

#include <Python.h>

#include <utility>

/// Owns one reference, or none.
class Reference {
  public:
    Reference() = default;
    explicit Reference(PyObject *owned) : object(owned) {}
    Reference(Reference &&other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Reference &operator=(Reference &&other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Reference() { Py_XDECREF(object); }

    explicit operator bool() const { return object != nullptr; }
    PyObject *get() const { return object; }
    PyObject *release() { return std::exchange(object, nullptr); }

  private:
    PyObject *object = nullptr;
};
