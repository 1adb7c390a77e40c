// Distribution: points of the unit square with a piecewise-constant pdf.
#pragma once

#include "libvantor/base/random.h"

#include <algorithm>
#include <functional>
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

    /// Writes the weights of a row: finite and 0 or more.
    using RowOfWeights = std::function<void(int row, std::span<float> weights)>;

    /// Asks for each row once, from the first to the last. If all weights are 0 no sample can be drawn.
    Distribution(int columns, int rows, const RowOfWeights &row_of_weights);

    Sample sample(Point2f numbers) const {
        const Found row = find(row_sums, row_guide, numbers.v);
        const Found column = find(sums_of_row(row.index), guide_of_row(row.index), numbers.u);
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

    // The step between two sums in which the number lies. Steps of no width are never found. The guide leaves few sums
    // to search (Chen, Asau, "On Generating Random Variates from an Empirical Distribution", 1974).
    static Found find(std::span<const float> sums, std::span<const std::uint32_t> guide, float number) {
        // Exact, as the stretches of the guide are a power of two.
        const auto stretch = static_cast<std::size_t>(number * static_cast<float>(guide.size() - 1));
        const auto above = std::upper_bound(sums.begin() + guide[stretch], sums.begin() + guide[stretch + 1], number);
        const float high = *above;
        const float low = *(above - 1);
        return {static_cast<int>(above - sums.begin()) - 1, (number - low) / (high - low)};
    }

    std::span<const float> sums_of_row(int row) const {
        return std::span(column_sums).subspan(static_cast<std::size_t>(row) * row_length, row_length);
    }
    std::span<const std::uint32_t> guide_of_row(int row) const {
        return std::span(column_guides).subspan(static_cast<std::size_t>(row) * guide_length, guide_length);
    }

    std::size_t row_length;         // of sums: one more than columns
    std::size_t guide_length;       // of a row
    std::vector<float> row_sums;    // cumulated from 0 to 1
    std::vector<float> column_sums; // of each row likewise; of a row without weight: 1, but for the first
    // Of so many equal stretches from 0 to 1, the first sum above the beginning of each; at last the first sum of 1.
    std::vector<std::uint32_t> row_guide;
    std::vector<std::uint32_t> column_guides;
};

} // namespace vantor
