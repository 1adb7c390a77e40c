// The sample numbers: stratified in every dimension, different from each other, the same every time.
#include "libvantor/base/random.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace {

using vantor::Point2f;
using vantor::Sampler;

// Of 2^m points of a (0, m, 2)-net every elementary interval of area 2^-m has exactly one: the defining property of the
// first two Sobol dimensions, which shuffling and scrambling keep.
void expect_net(const std::vector<Point2f> &points, int m) {
    for (int split = 0; split <= m; ++split) {
        std::set<std::pair<int, int>> cells;
        for (const Point2f &p : points)
            cells.insert({static_cast<int>(p.u * static_cast<float>(1 << split)),
                          static_cast<int>(p.v * static_cast<float>(1 << (m - split)))});
        EXPECT_EQ(cells.size(), points.size()) << "intervals of 2^-" << split << " by 2^-" << m - split;
    }
}

TEST(Random, SamplesOfAPixelAreANet) {
    for (const std::uint32_t dimension : {0u, 1u, 7u, 100u})
        for (const std::uint32_t x : {0u, 3u, 500u, 65535u}) {
            std::vector<Point2f> points;
            for (std::uint32_t s = 0; s < 64; ++s)
                points.push_back(Sampler(x, 17, s, 64).get_2d(dimension));
            expect_net(points, 6);
        }
}

TEST(Random, PixelsOfABlockAreANetTogether) {
    std::vector<Point2f> points;
    for (std::uint32_t y = 0; y < 4; ++y)
        for (std::uint32_t x = 0; x < 4; ++x)
            for (std::uint32_t s = 0; s < 4; ++s)
                points.push_back(Sampler(40 + x, 20 + y, s, 4).get_2d(3));
    expect_net(points, 6);
}

TEST(Random, NumbersLieInTheUnitInterval) {
    for (std::uint32_t s = 0; s < 4096; ++s) {
        const Sampler sampler(65535, 65535, s, 4096);
        for (const float number : {sampler.get_2d(5).u, sampler.get_2d(5).v, sampler.unstratified(5)}) {
            EXPECT_GE(number, 0);
            EXPECT_LT(number, 1);
        }
        EXPECT_GE(sampler.get_1d(6), 0);
        EXPECT_LT(sampler.get_1d(6), 1);
    }
}

TEST(Random, DimensionsAreUncorrelated) {
    // The product of two independent uniform numbers has the mean 1/4 and the variance 7/144; four standard errors.
    constexpr int count = 4096;
    const double tolerance = 4 * std::sqrt(7 / 144.0 / count);
    for (std::uint32_t a = 0; a < 8; ++a)
        for (std::uint32_t b = a + 1; b < 8; ++b) {
            double sums[3] = {};
            for (std::uint32_t s = 0; s < count; ++s) {
                const Sampler sampler(11, 12, s, count);
                sums[0] += sampler.get_2d(a).u * sampler.get_2d(b).u;
                sums[1] += sampler.get_2d(a).u * sampler.get_2d(b).v;
                sums[2] += sampler.get_2d(a).v * sampler.unstratified(b);
            }
            for (const double sum : sums)
                EXPECT_NEAR(sum / count, 0.25, tolerance) << "dimensions " << a << " and " << b;
        }
}

TEST(Random, ManyAtOnceAreTheSameNumbers) {
    std::vector<Sampler> samplers;
    for (std::uint32_t i = 0; i < 37; ++i) // whole lanes, and a rest
        samplers.emplace_back(i * 77, i * 1234, i, 64);
    std::vector<vantor::Point2f> pairs(samplers.size());
    vantor::get_2d_of(samplers, 12, pairs);
    for (std::size_t i = 0; i < samplers.size(); ++i) {
        EXPECT_EQ(pairs[i].u, samplers[i].get_2d(12).u);
        EXPECT_EQ(pairs[i].v, samplers[i].get_2d(12).v);
    }
}

TEST(Bits, ReversedTwiceAreTheSame) {
    EXPECT_EQ(vantor::reversed_bits(1), 0x80000000u);
    EXPECT_EQ(vantor::reversed_bits(0x0000f001u), 0x800f0000u);
    for (std::uint32_t i = 0; i < 1000; ++i)
        EXPECT_EQ(vantor::reversed_bits(vantor::reversed_bits(i * 0x9e3779b1u)), i * 0x9e3779b1u);
}

TEST(Bits, MortonCodesInterleaveTheBitsOfCoordinates) {
    EXPECT_EQ(vantor::morton_code(0xffff, 0), 0x55555555u);
    EXPECT_EQ(vantor::morton_code(0, 0xffff), 0xaaaaaaaau);
    EXPECT_EQ(vantor::morton_code(0b101, 0b011), 0b011011u);
    EXPECT_EQ(vantor::morton_code(1023, 0, 0), 0x09249249u);
    EXPECT_EQ(vantor::morton_code(0, 1023, 1023), 0x36db6db6u);
    EXPECT_EQ(vantor::morton_code(0b10, 0b01, 0b11), 0b101110u);
}

TEST(Bits, EvenBitsTakeMortonCodesApart) {
    for (std::uint32_t i = 0; i < 1000; ++i) {
        const std::uint32_t x = i * 7919 & 0xffff;
        const std::uint32_t y = i * 104729 & 0xffff;
        const std::uint32_t code = vantor::morton_code(x, y);
        EXPECT_EQ(vantor::even_bits(code), x);
        EXPECT_EQ(vantor::even_bits(code >> 1), y);
    }
}

} // namespace
