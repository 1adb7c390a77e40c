// Distribution: points of the unit square with a density that is constant on each cell of a grid.
#include "libvantor/lights/distribution.h"

namespace vantor {

namespace {

// The sums of the weights up to each, from 0 to 1; and the sum of all.
double cumulate(std::span<const double> weights, std::span<float> sums) {
    double total = 0;
    for (const double weight : weights)
        total += weight;
    const double scale = total > 0 ? 1 / total : 0.0;
    double sum = 0;
    sums[0] = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        sum += weights[i];
        sums[i + 1] = static_cast<float>(sum * scale);
    }
    // Rounding may leave the last sum below the largest random number, which would then find no step. The steps after
    // the last weight above 0 stay of no width.
    for (std::size_t i = weights.size(); i > 0; --i) {
        sums[i] = 1;
        if (weights[i - 1] > 0)
            break;
    }
    return total;
}

} // namespace

Distribution::Distribution(std::span<const float> weights, int columns, int rows)
    : row_length(static_cast<std::size_t>(columns) + 1), row_sums(static_cast<std::size_t>(rows) + 1),
      column_sums(row_length * static_cast<std::size_t>(rows)) {
    std::vector<double> row_weights;
    row_weights.reserve(static_cast<std::size_t>(rows));
    std::vector<double> row;
    for (std::size_t r = 0; r < static_cast<std::size_t>(rows); ++r) {
        const std::span<const float> cells = weights.subspan(r * (row_length - 1), row_length - 1);
        row.assign(cells.begin(), cells.end());
        row_weights.push_back(cumulate(row, std::span(column_sums).subspan(r * row_length, row_length)));
    }
    cumulate(row_weights, row_sums);
}

} // namespace vantor
