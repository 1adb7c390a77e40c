// Distribution: points of the unit square with a density that is constant on each cell of a grid.
#pragma once

#include "libvantor/base/random.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vantor {

/// A cell of the grid is drawn in proportion to its weight: first the row by the weights of the rows, then a cell of
/// the row. Within the cell points are uniform. Pharr, Jakob, Humphreys, "Physically Based Rendering", 4th ed., A.4.
/// The probability is computed from the same rounded sums that cells are drawn by, so that the two agree.
class Distribution {
  public:
    struct Sample {
        int column;
        int row;
        Point2f within; ///< From 0 to 1 across the cell, and down.
    };

    /// The weights are finite and 0 or more, row after row; not all of them 0.
    Distribution(std::span<const float> weights, int columns, int rows);

    Sample sample(Point2f numbers) const {
        const Found row = find(row_sums, numbers.v);
        const Found column = find(sums_of_row(row.index), numbers.u);
        return {column.index, row.index, {column.within, row.within}};
    }

    /// The probability of the cell.
    float pmf(int column, int row) const {
        const std::span<const float> sums = sums_of_row(row);
        const auto c = static_cast<std::size_t>(column);
        const auto r = static_cast<std::size_t>(row);
        return (sums[c + 1] - sums[c]) * (row_sums[r + 1] - row_sums[r]);
    }

  private:
    struct Found {
        int index;
        float within;
    };

    // The step between two sums in which the number lies. Steps of no width are never found.
    static Found find(std::span<const float> sums, float number) {
        const auto above = std::upper_bound(sums.begin(), sums.end(), number);
        const float high = *above;
        const float low = *(above - 1);
        return {static_cast<int>(above - sums.begin()) - 1, (number - low) / (high - low)};
    }

    std::span<const float> sums_of_row(int row) const {
        return std::span(column_sums).subspan(static_cast<std::size_t>(row) * row_length, row_length);
    }

    std::size_t row_length;         // of sums: one more than columns
    std::vector<float> row_sums;    // cumulated from 0 to 1
    std::vector<float> column_sums; // of each row likewise; of a row without weight: 1, but for the first
};

} // namespace vantor
