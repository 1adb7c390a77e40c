// The printed form of an object, built piece by piece.
#pragma once

#include <Python.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Collects ASCII text and numbers and makes one Python string of them. Running out of memory is remembered, and
/// reported by finish(); a caller with much more to write asks failed() first.
class Text {
  public:
    Text() = default;
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    ~Text();

    /// Up to longest_piece characters.
    Text &operator<<(std::string_view piece) {
        std::memcpy(room(), piece.data(), piece.size());
        end += piece.size();
        return *this;
    }

    /// As C's "%g" in the C locale, whatever the process's locale is.
    Text &operator<<(double number) {
        end = write_general(room(), number);
        return *this;
    }

    /// As C's "%ld".
    Text &operator<<(std::int32_t number) {
        char *at = room();
        end = std::to_chars(at, at + longest_piece, number).ptr;
        return *this;
    }

    bool failed() const { return out_of_memory; }

    /// The string as a new reference, or null with MemoryError set.
    PyObject *finish();

  private:
    // Longer than any number ("-1.23457e-308" has 13 characters) and any literal of a printed form.
    static constexpr std::ptrdiff_t longest_piece = 64;

    // Where the next piece goes.
    char *room() {
        if (limit - end < longest_piece)
            grow();
        return end;
    }
    void grow();

    // Writes "%g" of the number, at most longest_piece characters, and returns their end.
    static char *write_general(char *at, double number);

    char few[512]; // Enough for every object but an array; longer texts move to the heap.
    char *begin = few;
    char *end = few;
    char *limit = few + sizeof few;
    bool out_of_memory = false;
};
