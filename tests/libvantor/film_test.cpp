// The film: from samples to a pixel.
#include "libvantor/passes/film.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using vantor::Color;
using vantor::PixelFilm;

TEST(Film, MeanOfManyEqualSamplesIsTheirValue) {
    PixelFilm film;
    for (int i = 0; i < 1 << 20; ++i)
        film.add({0.1f, 0.7f, 1000.1f});
    const Color mean = film.mean();
    EXPECT_FLOAT_EQ(mean.r, 0.1f);
    EXPECT_FLOAT_EQ(mean.g, 0.7f);
    EXPECT_FLOAT_EQ(mean.b, 1000.1f);
}

TEST(Film, LargeSamplesDoNotOverflowTheirSum) {
    PixelFilm film;
    for (int i = 0; i < 4; ++i)
        film.add({3e38f, 0, 0});
    EXPECT_FLOAT_EQ(film.mean().r, 3e38f);
}

TEST(Film, SampleThatIsNotFiniteCountsAsBlack) {
    PixelFilm film;
    film.add({1, 2, 3});
    film.add({1, std::numeric_limits<float>::quiet_NaN(), 1});
    film.add({std::numeric_limits<float>::infinity(), 1, 1});
    film.add({3, 2, 1});
    const Color mean = film.mean();
    EXPECT_EQ(mean.r, 1);
    EXPECT_EQ(mean.g, 1);
    EXPECT_EQ(mean.b, 1);
}

} // namespace
