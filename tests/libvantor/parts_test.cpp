// Ranges of samples: which can be put together, in which order sums are added up, and their files.
#include "libvantor/base/pairwise_sum.h"
#include "libvantor/film/film.h"
#include "libvantor/images/files.h"
#include "libvantor/images/reading.h"
#include "tests/libvantor/scripted_scene.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

using vantor::Aov;
using vantor::PairwiseSum;
using vantor::PartSums;
using vantor::Picture;
using vantor::PixelFilm;
using vantor::Reduction;
using vantor::SampleRange;

bool is_subtree(int first, int end, int in_all) { return SampleRange{first, end, in_all}.is_subtree(); }

TEST(SampleRange, PowersOfTwoFromTheirMultiplesAreSubtrees) {
    EXPECT_TRUE(is_subtree(0, 16, 256));
    EXPECT_TRUE(is_subtree(16, 32, 256));
    EXPECT_TRUE(is_subtree(64, 128, 256));
    EXPECT_FALSE(is_subtree(16, 48, 256));
    EXPECT_FALSE(is_subtree(0, 48, 256));
    EXPECT_FALSE(is_subtree(8, 24, 256));
    EXPECT_FALSE(is_subtree(0, 8, 256));
    EXPECT_FALSE(is_subtree(0, 31, 256));
}

TEST(SampleRange, TheRestIsOneFromAMultipleOfWhatItWouldFill) {
    EXPECT_TRUE(is_subtree(64, 100, 100));
    EXPECT_TRUE(is_subtree(96, 100, 100));
    EXPECT_TRUE(is_subtree(0, 100, 100));
    EXPECT_FALSE(is_subtree(48, 100, 100)); // four groups from the third one on
    EXPECT_FALSE(is_subtree(64, 101, 100));
    EXPECT_FALSE(is_subtree(64, 64, 100));
    EXPECT_FALSE(is_subtree(-16, 16, 100));
}

struct Sum {
    double value;
    void add(const Sum &later) { value += later.value; }
};

// Numbers of very different size, so that every order of additions rounds differently.
double term(int group) { return (group % 3 == 0 ? 1e9 : 1e-7) / (group + 1); }

Sum sum_of(int first, int end) {
    PairwiseSum<Sum> sum;
    for (int group = first; group < end; ++group)
        sum.add({term(group)});
    return sum.take();
}

TEST(PairwiseSum, SubtreesInOneStepAreTheSameBits) {
    for (int groups = 1; groups < 70; ++groups) {
        const double whole = sum_of(0, groups).value;
        for (int size = 1; size <= 64; size *= 2) {
            PairwiseSum<Sum> sum;
            for (int first = 0; first < groups; first += size)
                sum.add(sum_of(first, std::min(first + size, groups)), std::min(size, groups - first));
            ASSERT_EQ(sum.take().value, whole) << groups << " groups by " << size;
        }
    }
}

TEST(PairwiseSum, AnotherOrderWouldRoundDifferently) {
    double in_turn = 0;
    for (int group = 0; group < 69; ++group)
        in_turn += term(group);
    EXPECT_NE(sum_of(0, 69).value, in_turn);
}

vantor::AovSample seen(float depth, float object) {
    vantor::AovSample sample{.is_hit = depth > 0};
    sample.values[index_of(Aov::Depth)] = {depth, depth, depth};
    sample.values[index_of(Aov::ObjectId)] = {object, object, object};
    return sample;
}

TEST(Film, FurtherSamplesCountAsIfTheyWereAddedOneByOne) {
    PixelFilm one;
    PixelFilm first;
    PixelFilm second;
    for (int i = 0; i < 8; ++i) {
        const auto value = static_cast<float>(i);
        const vantor::AovSample sample = seen(i % 2 ? 4.0f * value : 0.0f, 10 + value);
        one.add({value, 2 * value, 1}, sample);
        (i < 3 ? first : second).add({value, 2 * value, 1}, sample);
    }
    first.add(second);
    for (const vantor::AovRow &row : vantor::aov_table()) {
        const vantor::Color a = one.value(row.aov);
        const vantor::Color b = first.value(row.aov);
        EXPECT_EQ(a.r, b.r);
        EXPECT_EQ(a.g, b.g);
        EXPECT_EQ(a.b, b.b);
    }
}

TEST(Film, TheFirstOfTwoPartsHasTheFirstSample) {
    PixelFilm first;
    PixelFilm second;
    first.add({}, seen(0, 0)); // beside everything
    second.add({}, seen(1, 7));
    first.add(second);
    EXPECT_EQ(first.value(Aov::ObjectId).r, 0);
    EXPECT_EQ(second.value(Aov::ObjectId).r, 7);
}

TEST(PartFiles, HoldTheSumsToTheBit) {
    const std::string path = scripted::path_of("part.exr");
    Picture picture(20, 10, {3, 2, 8, 9});
    picture.part = PartSums{{16, 32, 48}, Reduction::Radiance, {}};
    for (int i = 0; i < 35; ++i)
        picture.part->pixels.push_back({{1.0 / (i + 1), 1e300, -0.0}, {2.0 / 3 * i, 5e-324, 3}, 16});
    ASSERT_EQ(vantor::write_picture(picture, {2, {}, "half"}, path), "");
    const vantor::ReadPart read = vantor::read_part(path);
    ASSERT_TRUE(read.picture) << read.why_not;
    EXPECT_EQ(read.picture->full_width, 20);
    EXPECT_EQ(read.picture->window.x0, 3);
    EXPECT_EQ(read.picture->window.y1, 9);
    const PartSums &part = *read.picture->part;
    EXPECT_EQ(part.samples.first, 16);
    EXPECT_EQ(part.samples.end, 32);
    EXPECT_EQ(part.samples.in_all, 48);
    EXPECT_EQ(part.reduction, Reduction::Radiance);
    ASSERT_EQ(part.pixels.size(), 35u);
    EXPECT_EQ(std::memcmp(part.pixels.data(), picture.part->pixels.data(), 35 * sizeof part.pixels[0]), 0);
}

TEST(PartFiles, OthersAreNone) {
    const std::string path = scripted::path_of("whole.exr");
    ASSERT_EQ(vantor::write_picture(Picture(4, 4, {0, 0, 4, 4}), {}, path), "");
    EXPECT_EQ(vantor::read_part(path).why_not, "it is no part of a larger picture");
    EXPECT_FALSE(vantor::read_part(scripted::path_of("none.exr")).picture);
}

} // namespace
