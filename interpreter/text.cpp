// The printed form of an object, built piece by piece.
#include "interpreter/text.h"

#include <charconv>
#include <cstring>

namespace {
// Longer than any number: "-1.23457e-308" has 13 characters.
constexpr std::size_t longest_number = 32;
} // namespace

Text::~Text() {
    if (text != few)
        PyMem_Free(text);
}

char *Text::room(std::size_t count) {
    if (capacity - length < count) {
        const std::size_t larger = 2 * capacity + count;
        char *grown = static_cast<char *>(text == few ? PyMem_Malloc(larger) : PyMem_Realloc(text, larger));
        if (!grown) {
            out_of_memory = true;
            return nullptr;
        }
        if (text == few)
            std::memcpy(grown, few, length);
        text = grown;
        capacity = larger;
    }
    return text + length;
}

Text &Text::operator<<(std::string_view piece) {
    if (char *end = room(piece.size())) {
        std::memcpy(end, piece.data(), piece.size());
        length += piece.size();
    }
    return *this;
}

Text &Text::operator<<(double number) {
    // Precision 6 and the general form are what "%g" means; unlike printf, this does not ask the locale.
    if (char *end = room(longest_number)) {
        const auto written = std::to_chars(end, end + longest_number, number, std::chars_format::general, 6);
        length += static_cast<std::size_t>(written.ptr - end);
    }
    return *this;
}

Text &Text::operator<<(std::int32_t number) {
    if (char *end = room(longest_number)) {
        const auto written = std::to_chars(end, end + longest_number, number);
        length += static_cast<std::size_t>(written.ptr - end);
    }
    return *this;
}

PyObject *Text::finish() {
    if (out_of_memory)
        return PyErr_NoMemory();
    PyObject *string = PyUnicode_New(static_cast<Py_ssize_t>(length), 127);
    if (string)
        std::memcpy(PyUnicode_DATA(string), text, length);
    return string;
}
