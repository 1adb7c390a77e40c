// VtMatrix2, VtMatrix3, VtMatrix4: matrices of 2, 3 and 4 row vectors.
#pragma once

#include "algebra/vt_vector.h"

/// N row vectors, contiguous, row 0 first, and nothing else. Element (r, c) is component c of row r, so that the N x N
/// doubles lie row after row (row-major). A default-constructed matrix is all zeros.
///
/// Nothing here checks an index. What a row means mathematically is decided by the code that uses the matrix; the
/// renderer interface treats points as rows (p' = p M).
template <int N> class VtMatrix {
  public:
    using Row = VtVector<N>;

    /// The number of rows, and of columns.
    static constexpr int dimension = N;

    constexpr VtMatrix() = default;

    // From rows, row 0 first; one constructor for each dimension, so that a wrong number of rows does not compile.
    constexpr VtMatrix(const Row &r0, const Row &r1) requires(N == 2) : row{r0, r1} {}
    constexpr VtMatrix(const Row &r0, const Row &r1, const Row &r2) requires(N == 3) : row{r0, r1, r2} {}
    constexpr VtMatrix(const Row &r0, const Row &r1, const Row &r2, const Row &r3) requires(N == 4)
        : row{r0, r1, r2, r3} {}

    /// Row r, 0 <= r < N; element (r, c) is matrix[r][c].
    constexpr Row &operator[](int r) { return row[r]; }
    constexpr const Row &operator[](int r) const { return row[r]; }

  private:
    Row row[N];
};

using VtMatrix2 = VtMatrix<2>;
using VtMatrix3 = VtMatrix<3>;
using VtMatrix4 = VtMatrix<4>;

static_assert(sizeof(VtMatrix2) == 4 * sizeof(double) && std::is_standard_layout_v<VtMatrix2>);
static_assert(sizeof(VtMatrix3) == 9 * sizeof(double) && std::is_standard_layout_v<VtMatrix3>);
static_assert(sizeof(VtMatrix4) == 16 * sizeof(double) && std::is_standard_layout_v<VtMatrix4>);
static_assert(std::is_trivially_copyable_v<VtMatrix4>);
