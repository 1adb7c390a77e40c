// How vectors and matrices stand in printed text. Types differ only in what surrounds the numbers.
#pragma once

#include "algebra/vt_matrix.h"
#include "interpreter/text.h"

#include <string_view>

/// The components between the given texts: write(text, v, "( ", " )") gives "( 1, 2, 3 )".
template <int N> void write(Text &text, const VtVector<N> &vector, std::string_view open, std::string_view close) {
    text << open << vector[0];
    for (int i = 1; i < N; ++i)
        text << ", " << vector[i];
    text << close;
}

/// The rows, each between the given texts: write_rows(text, m, "(", ")") gives "(1, 2), (3, 4)".
template <int N> void write_rows(Text &text, const VtMatrix<N> &matrix, std::string_view open, std::string_view close) {
    write(text, matrix[0], open, close);
    for (int i = 1; i < N; ++i) {
        text << ", ";
        write(text, matrix[i], open, close);
    }
}
