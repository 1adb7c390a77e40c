// Distribution: points of the unit square with a piecewise-constant pdf.
#include "libvantor/lights/distribution.h"

#include <bit>

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

// The stretches of a guide to so many steps: a power of two, which leaves about so many sums to search, or up to twice
// as many. Floats count the stretches exactly.
std::size_t stretches_for(int steps, std::size_t sums_left) {
    constexpr std::size_t most = 1 << 24;
    return std::bit_floor(std::clamp(static_cast<std::size_t>(steps) / sums_left, std::size_t{1}, most));
}

// All columns' guides take a quarter of what their sums do.
constexpr std::size_t sums_left_of_columns = 4;

void make_guide(std::span<const float> sums, std::span<std::uint32_t> guide) {
    const auto stretches = static_cast<float>(guide.size() - 1);
    std::size_t above = 0;
    for (std::size_t i = 0; i + 1 < guide.size(); ++i) {
        while (sums[above] <= static_cast<float>(i) / stretches)
            ++above;
        guide[i] = static_cast<std::uint32_t>(above);
    }
    while (sums[above] < 1)
        ++above;
    guide.back() = static_cast<std::uint32_t>(above);
}

} // namespace

Distribution::Distribution(int columns, int rows, const RowOfWeights &row_of_weights)
    : row_length(static_cast<std::size_t>(columns) + 1), guide_length(stretches_for(columns, sums_left_of_columns) + 1),
      row_sums(static_cast<std::size_t>(rows) + 1), column_sums(row_length * static_cast<std::size_t>(rows)),
      row_guide(stretches_for(rows, 1) + 1), column_guides(guide_length * static_cast<std::size_t>(rows)) {
    std::vector<double> row_weights;
    row_weights.reserve(static_cast<std::size_t>(rows));
    std::vector<float> weights(row_length - 1);
    std::vector<double> row;
    for (std::size_t r = 0; r < static_cast<std::size_t>(rows); ++r) {
        row_of_weights(static_cast<int>(r), weights);
        row.assign(weights.begin(), weights.end());
        const std::span<float> sums = std::span(column_sums).subspan(r * row_length, row_length);
        row_weights.push_back(cumulate(row, sums));
        make_guide(sums, std::span(column_guides).subspan(r * guide_length, guide_length));
    }
    cumulate(row_weights, row_sums);
    make_guide(row_sums, row_guide);
}

} // namespace vantor
