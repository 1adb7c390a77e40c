// Sample shares: which blocks of a picture get how many samples.
#include "libvantor/passes/sample_shares.h"

#include "libvantor/base/random.h"

#include <cmath>
#include <limits>

namespace vantor {

namespace {

// Of the mean number of samples, every block gets at least this part. Where bright samples are rare none may have come
// yet, and the error is larger than it looks: at worst, by the root of 2.
constexpr double least_part = 0.5;

// By how far away a block is, in rows or columns.
constexpr double neighbour_weights[] = {0, 4, 1};
constexpr int neighbour_radius = static_cast<int>(std::size(neighbour_weights)) - 1;

double variance_around(const BlockGrid &grid, const std::vector<double> &variances, int column, int row) {
    double sum = 0;
    double weights = 0;
    for (int y = std::max(0, row - neighbour_radius); y <= std::min(grid.rows() - 1, row + neighbour_radius); ++y)
        for (int x = std::max(0, column - neighbour_radius);
             x <= std::min(grid.columns() - 1, column + neighbour_radius); ++x) {
            const double weight = neighbour_weights[std::max(std::abs(x - column), std::abs(y - row))];
            sum += weight * variances[grid.index(x, y)];
            weights += weight;
        }
    return weights > 0 ? sum / weights : 0;
}

// Proportional to the standard deviation, which makes the error of all least (Neyman's allocation).
std::vector<double> shares(const BlockGrid &grid, const std::vector<double> &variances) {
    std::vector<double> result(grid.count());
    double sum = 0;
    for (int row = 0; row < grid.rows(); ++row)
        for (int column = 0; column < grid.columns(); ++column)
            sum += result[grid.index(column, row)] = std::sqrt(variance_around(grid, variances, column, row));
    if (!(sum > 0))
        std::ranges::fill(result, 1.0);
    return result;
}

} // namespace

std::vector<int> shared_out(const BlockGrid &grid, const std::vector<double> &variances,
                            const std::vector<int> &groups_before, double mean_groups, int most_groups) {
    const std::vector<double> share = shares(grid, variances);
    std::vector<int> result(share.size());
    const auto limit = static_cast<double>(most_groups);
    // Whole groups by a threshold that differs from block to block, so that equal shares need not be equal counts and
    // their mean can be any.
    const auto give = [&](double factor) {
        double groups = 0;
        grid.for_each([&](std::size_t i, const PixelArea &block) {
            const double threshold = sobol::unit_float(sobol::hash(static_cast<std::uint32_t>(i)));
            const double wanted = std::max(factor * share[i], least_part * mean_groups) + threshold;
            result[i] = std::max(groups_before[i], static_cast<int>(std::min(wanted, limit)));
            groups += static_cast<double>(result[i]) * block.width() * block.height();
        });
        return groups;
    };
    const double there_are = mean_groups * grid.width * grid.height;
    double low = 0;
    double high = std::exp2(std::ceil(std::log2(limit / *std::ranges::max_element(share))));
    while (give(high) < there_are && high < std::numeric_limits<double>::max() / 2)
        high *= 2;
    constexpr int bisections = 64; // from here on, factors are the same floats
    for (int i = 0; i < bisections; ++i) {
        const double middle = 0.5 * (low + high);
        (give(middle) > there_are ? high : low) = middle;
    }
    give(low);
    return result;
}

} // namespace vantor
