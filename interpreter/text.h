// The printed form of an object, built piece by piece.
#pragma once

#include <Python.h>

#include <cstdint>
#include <string_view>

/// Collects ASCII text and numbers and makes one Python string of them. Running out of memory is remembered and
/// reported by finish().
class Text {
  public:
    Text() = default;
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    ~Text();

    Text &operator<<(std::string_view piece);
    /// As C's "%g" in the C locale, whatever the process's locale is.
    Text &operator<<(double number);
    /// As C's "%ld".
    Text &operator<<(std::int32_t number);

    /// The string as a new reference, or null with MemoryError set.
    PyObject *finish();

  private:
    // Where the next `count` characters may be written; null when out of memory.
    char *room(std::size_t count);

    char few[512]; // Enough for every object but an array; larger texts move to the heap.
    char *text = few;
    std::size_t length = 0;
    std::size_t capacity = sizeof few;
    bool out_of_memory = false;
};
