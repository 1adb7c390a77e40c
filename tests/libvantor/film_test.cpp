// The film: from samples to a pixel; and the filters under which samples are spread.
#include "libvantor/film/film.h"

#include "libvantor/base/warp.h"
#include "libvantor/film/filter.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using vantor::Aov;
using vantor::AovSample;
using vantor::Color;
using vantor::Filter;
using vantor::FilterSampler;
using vantor::PixelFilm;

TEST(Film, MeanOfManyEqualSamplesIsTheirValue) {
    PixelFilm film;
    for (int i = 0; i < 1 << 20; ++i)
        film.add({0.1f, 0.7f, 1000.1f});
    const Color mean = film.value(Aov::Color);
    EXPECT_FLOAT_EQ(mean.r, 0.1f);
    EXPECT_FLOAT_EQ(mean.g, 0.7f);
    EXPECT_FLOAT_EQ(mean.b, 1000.1f);
}

TEST(Film, LargeSamplesDoNotOverflowTheirSum) {
    PixelFilm film;
    for (int i = 0; i < 4; ++i)
        film.add({3e38f, 0, 0});
    EXPECT_FLOAT_EQ(film.value(Aov::Color).r, 3e38f);
}

TEST(Film, SampleThatIsNotFiniteCountsAsBlack) {
    PixelFilm film;
    film.add({1, 2, 3});
    film.add({1, std::numeric_limits<float>::quiet_NaN(), 1});
    film.add({std::numeric_limits<float>::infinity(), 1, 1});
    film.add({3, 2, 1});
    const Color mean = film.value(Aov::Color);
    EXPECT_EQ(mean.r, 1);
    EXPECT_EQ(mean.g, 1);
    EXPECT_EQ(mean.b, 1);
}

TEST(Film, VarianceIsThatOfTheMean) {
    PixelFilm film;
    film.add({1, 5, 7});
    EXPECT_EQ(film.value(Aov::Variance).r, 0); // nothing is known yet
    film.add({2, 5, 7});
    film.add({6, 5, 7});
    // Around the mean 3: (4 + 1 + 9) / 2 = 7 is the variance of a sample, a third of it that of the mean.
    EXPECT_FLOAT_EQ(film.value(Aov::Variance).r, 7.0f / 3);
    EXPECT_EQ(film.value(Aov::Variance).g, 0);
    EXPECT_EQ(film.value(Aov::Variance).b, 0);
}

AovSample seen(Color albedo, Color normal, Color position, float depth, float object) {
    AovSample sample;
    sample.is_hit = true;
    const auto set = [&](Aov aov, Color value) { sample.values[index_of(aov)] = value; };
    set(Aov::Albedo, albedo);
    set(Aov::Normal, normal);
    set(Aov::Position, position);
    set(Aov::Depth, {depth, depth, depth});
    set(Aov::ObjectId, {object, object, object});
    return sample;
}

TEST(Film, AovsAreReducedAsTheirRowsSay) {
    PixelFilm film;
    film.add({}, seen({0.5f, 0.25f, 1}, {0, 0, 1}, {1, 2, 3}, 10, 7));
    film.add({}, seen({0.5f, 0.75f, 0}, {1, 0, 0}, {3, 2, 1}, 20, 8));
    for (int i = 0; i < 2; ++i)
        film.add({}, AovSample());
    const Color albedo = film.value(Aov::Albedo);
    EXPECT_FLOAT_EQ(albedo.r, 0.25f);
    EXPECT_FLOAT_EQ(albedo.g, 0.25f);
    EXPECT_FLOAT_EQ(albedo.b, 0.25f);
    EXPECT_FLOAT_EQ(film.value(Aov::Normal).r, std::sqrt(0.5f));
    EXPECT_FLOAT_EQ(film.value(Aov::Normal).b, std::sqrt(0.5f));
    EXPECT_FLOAT_EQ(film.value(Aov::Position).r, 2);
    EXPECT_FLOAT_EQ(film.value(Aov::Depth).g, 15);
    EXPECT_EQ(film.value(Aov::ObjectId).r, 7);
}

TEST(Film, ObjectOfAFirstSampleThatHitsNothingIsNone) {
    PixelFilm film;
    film.add({}, AovSample());
    film.add({}, seen({}, {0, 0, 1}, {}, 1, 8));
    EXPECT_EQ(film.value(Aov::ObjectId).r, 0);
    EXPECT_FLOAT_EQ(film.value(Aov::Depth).r, 1);
}

TEST(Film, PixelThatHitsNothingHasAovsOfZero) {
    PixelFilm film;
    film.add({1, 1, 1}, AovSample());
    for (const Aov aov : {Aov::Albedo, Aov::Normal, Aov::Depth, Aov::Position, Aov::ObjectId}) {
        EXPECT_EQ(film.value(aov).r, 0);
        EXPECT_EQ(film.value(aov).g, 0);
        EXPECT_EQ(film.value(aov).b, 0);
    }
}

constexpr Filter::Kind kinds[] = {Filter::Kind::Tent, Filter::Kind::Box, Filter::Kind::Gaussian,
                                  Filter::Kind::BlackmanHarris};

TEST(Filters, TheDefaultIsATentOfTwoPixels) {
    const FilterSampler sampler{Filter()};
    for (const float number : {0.0f, 0.1f, 0.25f, 0.5f, 0.9f})
        EXPECT_EQ(sampler.offset(number), vantor::warp::tent(number));
    const vantor::Point2f position = sampler.position(3, 7, {0.5f, 0.125f});
    EXPECT_EQ(position.u, 3.5f);
    EXPECT_EQ(position.v, 7.0f);
}

TEST(Filters, OffsetsGrowFromEdgeToEdgeAndAreSymmetric) {
    for (const Filter::Kind kind : kinds) {
        const FilterSampler sampler({kind, 3});
        EXPECT_NEAR(sampler.offset(0), -1.5f, 1e-6f);
        EXPECT_LE(sampler.offset(0x1.fffffep-1f), 1.5f);
        EXPECT_NEAR(sampler.offset(0.5f), 0, 1e-4f);
        float last = -2;
        for (int i = 0; i < 1000; ++i) {
            const float number = static_cast<float>(i) / 1000;
            const float offset = sampler.offset(number);
            EXPECT_GT(offset, last);
            last = offset;
            // Where the curve comes down to 0, rounding of the number moves the offset far.
            if (i > 5) {
                EXPECT_NEAR(offset, -sampler.offset(1 - number), 1e-3f);
            }
        }
    }
}

TEST(Filters, OffsetsAreSpreadLikeTheCurve) {
    constexpr int bins = 60;
    constexpr int count = 1 << 18;
    constexpr float width = 2.5f;
    for (const Filter::Kind kind : kinds) {
        // The fraction of each bin, by Simpson's rule; together 1.
        std::array<double, bins> expected{};
        double all = 0;
        for (int i = 0; i < bins; ++i) {
            constexpr int steps = 64;
            for (int j = 0; j <= steps; ++j) {
                const double x = 2 * (i + static_cast<double>(j) / steps) / bins - 1;
                const double weight = j == 0 || j == steps ? 1 : j % 2 == 1 ? 4 : 2;
                expected[static_cast<std::size_t>(i)] += weight * FilterSampler::curve(kind, std::clamp(x, -1.0, 1.0));
            }
            all += expected[static_cast<std::size_t>(i)];
        }
        std::array<int, bins> found{};
        const FilterSampler sampler({kind, width});
        for (std::uint32_t i = 0; i < count; ++i) {
            const float x = sampler.offset(vantor::sobol::unit_float(vantor::sobol::hash(i + 1)));
            const int bin = static_cast<int>((x / width + 0.5f) * bins);
            ASSERT_GE(bin, 0);
            ++found[static_cast<std::size_t>(std::min(bin, bins - 1))];
        }
        // Bins of less than ten are joined with their neighbour.
        double chi_square = 0;
        int degrees = -1;
        double wanted = 0;
        double got = 0;
        for (std::size_t i = 0; i < bins; ++i) {
            wanted += expected[i] / all * count;
            got += found[i];
            if (wanted < 10 && i + 1 < bins)
                continue;
            if (wanted > 0)
                chi_square += (got - wanted) * (got - wanted) / wanted;
            ++degrees;
            wanted = got = 0;
        }
        // Mean and standard deviation of the distribution: degrees, and the root of twice that. Four of them.
        EXPECT_LT(chi_square, degrees + 4 * std::sqrt(2.0 * degrees)) << static_cast<int>(kind);
    }
}

TEST(Filters, CurvesAreThePublishedOnes) {
    EXPECT_EQ(FilterSampler::curve(Filter::Kind::Tent, 0.25), 0.75);
    EXPECT_EQ(FilterSampler::curve(Filter::Kind::Box, -0.9), 1);
    EXPECT_NEAR(FilterSampler::curve(Filter::Kind::Gaussian, 1.0 / 3), std::exp(-0.5), 1e-12);
    EXPECT_NEAR(FilterSampler::curve(Filter::Kind::BlackmanHarris, 0), 1, 1e-12);
    EXPECT_NEAR(FilterSampler::curve(Filter::Kind::BlackmanHarris, 1), 6e-5, 1e-9); // a0 - a1 + a2 - a3
    for (const Filter::Kind kind : kinds)
        for (double x = -1; x <= 1; x += 0.01)
            EXPECT_GE(FilterSampler::curve(kind, x), 0);
}

} // namespace
