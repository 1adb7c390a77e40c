// The distribution of a grid: where its points fall, against the weights.
#include "libvantor/lights/distribution.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace {

using vantor::Distribution;
using vantor::Point2f;

Point2f numbers(std::mt19937 &random) {
    const auto number = [&] { return vantor::sobol::unit_float(static_cast<std::uint32_t>(random())); };
    const float u = number();
    return {u, number()};
}

Distribution distribution_of(const std::vector<float> &weights, int columns, int rows) {
    return {columns, rows,
            [&](int row, std::span<float> to) { std::copy_n(weights.begin() + row * columns, columns, to.begin()); }};
}

TEST(Distribution, DrawsCellsByTheirWeights) {
    constexpr int columns = 7;
    constexpr int rows = 5;
    std::mt19937 random(1);
    std::vector<float> weights;
    double total = 0;
    for (int i = 0; i < columns * rows; ++i) {
        weights.push_back(static_cast<float>(1 + random() % 20));
        total += weights.back();
    }
    const Distribution distribution = distribution_of(weights, columns, rows);

    // Each cell in quarters, to see that points are uniform inside.
    constexpr int draws = 200000;
    std::vector<int> counts(weights.size() * 4);
    for (int i = 0; i < draws; ++i) {
        const Distribution::Sample sample = distribution.sample(numbers(random));
        ASSERT_TRUE(sample.column >= 0 && sample.column < columns && sample.row >= 0 && sample.row < rows);
        ASSERT_TRUE(sample.within.u >= 0 && sample.within.u <= 1 && sample.within.v >= 0 && sample.within.v <= 1);
        const int quarter = (sample.within.u < 0.5f ? 0 : 1) + (sample.within.v < 0.5f ? 0 : 2);
        ++counts[static_cast<std::size_t>((sample.row * columns + sample.column) * 4 + quarter)];
    }
    double chi_square = 0;
    double probabilities = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const float probability = distribution.pmf(static_cast<int>(i) % columns, static_cast<int>(i) / columns);
        EXPECT_NEAR(probability, weights[i] / total, 1e-6);
        probabilities += probability;
        for (std::size_t quarter = 0; quarter < 4; ++quarter) {
            const double expected = draws * weights[i] / total / 4;
            chi_square += std::pow(counts[4 * i + quarter] - expected, 2) / expected;
        }
    }
    EXPECT_NEAR(probabilities, 1, 1e-6);
    // The 99.99 % point of chi-square with 139 degrees of freedom.
    EXPECT_LT(chi_square, 209);
}

TEST(Distribution, NeverDrawsACellWithoutWeight) {
    // Empty cells and rows at the start, in the middle and at the end; and a weight that is nearly nothing beside the
    // others.
    const std::vector<float> weights{0, 0, 0,         0, /**/ 0, 1, 0,      0, /**/ 0, 0,
                                     0, 0, /**/ 3e9f, 0, 1e-9f,  0, /**/ 0, 0, 0,      0};
    const Distribution distribution = distribution_of(weights, 4, 5);
    const float last = 1 - 0x1p-24f;
    for (const float u : {0.0f, 0x1p-24f, 0.3f, 0.5f, last})
        for (const float v : {0.0f, 0x1p-24f, 0.3f, 0.5f, last}) {
            const Distribution::Sample sample = distribution.sample({u, v});
            EXPECT_GT(weights[static_cast<std::size_t>(4 * sample.row + sample.column)], 0) << u << " " << v;
            EXPECT_GT(distribution.pmf(sample.column, sample.row), 0);
        }
    EXPECT_EQ(distribution.pmf(0, 0), 0);
    EXPECT_EQ(distribution.pmf(3, 3), 0);
    EXPECT_EQ(distribution.pmf(3, 4), 0);
}

// Where a search through all sums finds the number: the last step that begins at it or before, and has a width.
TEST(Distribution, FindsWhatASearchThroughAllSumsFinds) {
    std::mt19937 random(2);
    for (const int columns : {1, 2, 3, 4, 7, 64, 333, 1000})
        for (const double bright : {1.0, 1e4, 1e9}) {
            std::vector<float> weights;
            for (int i = 0; i < columns; ++i)
                weights.push_back(random() % 3 == 0 ? 0.0f : static_cast<float>(random() % 100));
            weights[random() % weights.size()] = static_cast<float>(bright);
            const Distribution distribution = distribution_of(weights, columns, 1);
            // All weights are whole numbers.
            const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
            std::vector<float> sums{0};
            double sum = 0;
            for (const float weight : weights)
                sums.push_back(static_cast<float>((sum += weight) * (1 / total)));
            std::vector<float> asked;
            for (const float s : sums)
                for (const float number : {std::nextafter(s, 0.0f), s, std::nextafter(s, 1.0f)})
                    if (number < 1)
                        asked.push_back(number);
            for (int i = 0; i < 4096; ++i)
                asked.push_back(static_cast<float>(i) / 4096);
            for (const float number : asked) {
                const Distribution::Sample sample = distribution.sample({number, 0.5f});
                const auto above = std::upper_bound(sums.begin(), sums.end(), number);
                ASSERT_NE(above, sums.end());
                ASSERT_EQ(sample.column, above - sums.begin() - 1) << number << " of " << columns;
                ASSERT_EQ(sample.within.u, (number - *(above - 1)) / (*above - *(above - 1)));
            }
        }
}

TEST(Distribution, OneCellIsTheWholeSquare) {
    const std::vector<float> weights{5};
    const Distribution distribution = distribution_of(weights, 1, 1);
    const Distribution::Sample sample = distribution.sample({0.25f, 0.75f});
    EXPECT_EQ(sample.within.u, 0.25f);
    EXPECT_EQ(sample.within.v, 0.75f);
    EXPECT_EQ(distribution.pmf(0, 0), 1);
}

} // namespace
