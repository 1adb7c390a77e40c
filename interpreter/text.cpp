// The printed form of an object, built piece by piece.
#include "interpreter/text.h"

#include <cmath>

Text::~Text() {
    if (begin != few)
        PyMem_Free(begin);
}

void Text::grow() {
    const auto length = static_cast<std::size_t>(end - begin);
    const std::size_t larger = 2 * static_cast<std::size_t>(limit - begin);
    char *grown = static_cast<char *>(begin == few ? PyMem_Malloc(larger) : PyMem_Realloc(begin, larger));
    if (!grown) {
        // What follows is written over what there is, and finish() drops it.
        out_of_memory = true;
        end = begin;
        return;
    }
    if (begin == few)
        std::memcpy(grown, few, length);
    begin = grown;
    end = begin + length;
    limit = begin + larger;
}

char *Text::write_general(char *at, double number) {
    // Most numbers of a scene need no exponent. Scaled to six digits before the point, such a number is off by at most
    // half a unit in the last place, less than 1e-10, so that its digits are certain unless the part to be rounded off
    // is that close to one half. Everything else, and everything uncertain, is left to the library. More than twice
    // as fast.
    static constexpr double power[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    constexpr double uncertain = 1e-9;

    const double magnitude = std::fabs(number);
    if (magnitude >= 1e-4 && magnitude < 1e6) {
        int scale = 0; // the power of ten that makes it a number of six digits
        while (magnitude * power[scale] < 1e5)
            ++scale;
        const double scaled = magnitude * power[scale];
        auto digits = static_cast<std::int32_t>(scaled);
        const double rest = scaled - digits;
        digits += rest > 0.5;
        if (std::fabs(rest - 0.5) > uncertain && digits < 1000000) {
            if (std::signbit(number))
                *at++ = '-';
            // Without the zeros at the end, which "%g" leaves out.
            while (scale > 0 && digits % 10 == 0) {
                digits /= 10;
                --scale;
            }
            if (scale == 0)
                return std::to_chars(at, at + longest_piece, digits).ptr;

            // Digits from the last to the first, the point among them, and at least one digit before it.
            char reversed[longest_piece];
            char *next = reversed;
            for (int place = 0; place <= scale || digits > 0; ++place) {
                if (place == scale)
                    *next++ = '.';
                *next++ = static_cast<char>('0' + digits % 10);
                digits /= 10;
            }
            while (next != reversed)
                *at++ = *--next;
            return at;
        }
    }
    return std::to_chars(at, at + longest_piece, number, std::chars_format::general, 6).ptr;
}

PyObject *Text::finish() {
    if (out_of_memory)
        return PyErr_NoMemory();
    PyObject *string = PyUnicode_New(end - begin, 127);
    if (string)
        std::memcpy(PyUnicode_DATA(string), begin, static_cast<std::size_t>(end - begin));
    return string;
}
