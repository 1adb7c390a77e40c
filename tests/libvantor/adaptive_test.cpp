// Passes that look at the noise: where their samples go, when they end, and that nothing else makes a difference.
#include "libvantor/passes/error_estimate.h"
#include "libvantor/passes/sample_shares.h"
#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/noisy_scenes.h"
#include "tests/libvantor/picture_readers.h"

#include <numeric>
#include <tbb/global_control.h>

namespace {

using scripted::errors_of;
using scripted::List;
using scripted::make_ball;
using scripted::make_caustics;
using scripted::make_room;
using scripted::mean;
using scripted::path_of;
using scripted::Pixels;
using scripted::rmse;
using scripted::Scene;
using vantor::BlockGrid;
using vantor::HalfSums;
using vantor::PixelArea;
using vantor::shared_out;

constexpr std::array<double, 4> whole = {0, 0, 1, 1};
constexpr std::array<double, 4> part = {0.3, 0.4, 0.62, 0.55};

// What a pass with these settings makes, and what it says of it.
struct Made {
    Pixels pixels;
    std::string comment;
};

struct Asked {
    int width = 50; // not a multiple of the block's side
    int height = 46;
    int samples = 64;
    std::array<double, 4> window = whole;
    List *file = nullptr; // further parameters of the imager
};

template <class... Values> Made made(Scene &scene, const Asked &asked, const Values &...settings) {
    const std::string path = path_of("adaptive.exr");
    std::filesystem::remove(path);
    List list(settings...);
    List none;
    List &file = asked.file ? *asked.file : none;
    file.add("name");
    file.add(path);
    scene.ImagerBegin(scene.NewImager("settings", list));
    scene.ImagerBegin(scene.NewImager("file", file));
    scene.Render(asked.width, asked.height, asked.samples, asked.window[0], asked.window[1], asked.window[2],
                 asked.window[3]);
    scene.ImagerEnd();
    scene.ImagerEnd();
    if (!std::filesystem::exists(path))
        return {};
    return {scripted::read_exr(path), scripted::exr_comment(path)};
}

void expect_part_of(const Pixels &all, const Pixels &some) {
    ASSERT_GT(some.width, 0);
    ASSERT_LT(some.width, all.width);
    for (int y = some.y0; y < some.y0 + some.height; ++y)
        for (int x = some.x0; x < some.x0 + some.width; ++x)
            ASSERT_EQ(some.at(x, y), all.at(x, y)) << x << ' ' << y;
}

double number_after(const std::string &text, const std::string &words) {
    const std::size_t at = text.find(words);
    EXPECT_NE(at, std::string::npos) << text;
    return at == std::string::npos ? 0 : std::stod(text.substr(at + words.size()));
}

double mean_of(const BlockGrid &grid, const std::vector<int> &groups) {
    double sum = 0;
    grid.for_each([&](std::size_t i, const PixelArea &block) { sum += groups[i] * block.width() * block.height(); });
    return sum / (grid.width * grid.height);
}

// Noise of very different size, and a corner without any.
std::vector<double> some_variances(const BlockGrid &grid) {
    std::vector<double> result(grid.count());
    grid.for_each([&](std::size_t i, const PixelArea &block) {
        result[i] = block.x0 < grid.width / 4 ? 0 : std::exp2(static_cast<double>(i % 23) - 11);
    });
    return result;
}

TEST(SampleShares, TheirMeanIsWhatItIsToBe) {
    const BlockGrid grid{203, 150};
    const std::vector<int> one(grid.count(), 1);
    for (const double groups : {1.25, 2.0, 4.0, 6.25, 16.0}) {
        EXPECT_NEAR(mean_of(grid, shared_out(grid, some_variances(grid), one, groups, 64)), groups, 0.02);
        EXPECT_LE(mean_of(grid, shared_out(grid, some_variances(grid), one, groups, 64)), groups);
        // Whether or not the noise is the same all over, or nowhere.
        for (const double variance : {0.0, 1e-30, 1.0, 1e30})
            EXPECT_NEAR(mean_of(grid, shared_out(grid, std::vector<double>(grid.count(), variance), one, groups, 64)),
                        groups, 0.02);
    }
}

TEST(SampleShares, NoBlockHasFewerThanBeforeOrMoreThanTheLimit) {
    const BlockGrid grid{100, 60};
    const std::vector<int> first = shared_out(grid, some_variances(grid), std::vector<int>(grid.count(), 1), 4, 20);
    std::vector<double> others = some_variances(grid);
    std::ranges::reverse(others);
    const std::vector<int> second = shared_out(grid, others, first, 12, 20);
    for (std::size_t i = 0; i < grid.count(); ++i) {
        EXPECT_GE(first[i], 1);
        EXPECT_GE(second[i], first[i]);
        EXPECT_LE(second[i], 20);
    }
    EXPECT_EQ(*std::ranges::max_element(second), 20);
    for (const int groups : first)
        EXPECT_GE(groups, 2); // half of the mean
}

TEST(SampleShares, FollowTheDeviationOfTheBlocksAround) {
    const BlockGrid grid{160, 160};
    std::vector<double> variances(grid.count());
    grid.for_each([&](std::size_t i, const PixelArea &block) { variances[i] = block.x0 < 80 ? 1 : 4; });
    const std::vector<int> groups = shared_out(grid, variances, std::vector<int>(grid.count(), 1), 100, 1000);
    EXPECT_NEAR(groups[grid.index(5, 20)], 67, 2);
    EXPECT_NEAR(groups[grid.index(35, 20)], 133, 3);
}

// Or else a bright sample that comes by chance would have more others to be averaged with than a dark one.
TEST(SampleShares, ABlocksOwnNoiseGivesItNothing) {
    const BlockGrid grid{160, 160};
    std::vector<double> variances(grid.count(), 1.0);
    const std::vector<int> one(grid.count(), 1);
    const std::vector<int> without = shared_out(grid, variances, one, 10, 100);
    variances[grid.index(20, 20)] = 1e4;
    const std::vector<int> with = shared_out(grid, variances, one, 10, 100);
    EXPECT_LE(with[grid.index(20, 20)], without[grid.index(20, 20)]);
    EXPECT_GT(with[grid.index(21, 20)], 2 * without[grid.index(21, 20)]);
}

// Of independent numbers, the variance that is told is theirs.
TEST(ErrorEstimate, IsTheErrorOfIndependentSamples) {
    const BlockGrid grid{256, 256};
    constexpr int samples = 48;
    std::vector<HalfSums> halves(256 * 256);
    std::uint32_t number = 0;
    const auto random = [&] { return double{vantor::sobol::unit_float(vantor::sobol::hash(++number))}; };
    for (HalfSums &sums : halves)
        for (int half = 0; half < HalfSums::halves_of(samples); ++half) {
            double sum = 0;
            for (int i = 0; i < vantor::samples_per_half; ++i)
                sum += 3 + random();
            sums.add(sum / vantor::samples_per_half);
        }
    const auto estimate = vantor::estimate_error(grid, halves, [](const PixelArea &) { return samples; });
    EXPECT_NEAR(estimate.relative_error, std::sqrt(1.0 / 12 / samples) / 3.5, 2e-4);
    EXPECT_NEAR(std::accumulate(estimate.variances.begin(), estimate.variances.end(), 0.0) / grid.count(),
                1.0 / 12 / (3.5 * 3.5), 1e-4);
}

TEST(ErrorEstimate, OfNothingButBlackIsZero) {
    const BlockGrid grid{7, 5};
    const auto estimate = vantor::estimate_error(grid, std::vector<HalfSums>(35), [](const PixelArea &) { return 16; });
    EXPECT_EQ(estimate.relative_error, 0);
    EXPECT_EQ(estimate.variances, std::vector<double>(4, 0.0));
}

TEST(Adaptive, AWindowHasThePixelsOfTheWholePicture) {
    Scene scene;
    make_caustics(scene);
    const Pixels all = made(scene, {}, "adaptive", 1).pixels;
    expect_part_of(all, made(scene, {.window = part}, "adaptive", 1).pixels);
    List for_all("denoise", 1);
    List for_part("denoise", 1);
    const Pixels smooth = made(scene, {.file = &for_all}, "adaptive", 1).pixels;
    EXPECT_NE(smooth.values, all.values);
    expect_part_of(smooth, made(scene, {.window = part, .file = &for_part}, "adaptive", 1).pixels);
}

TEST(Adaptive, AWindowEndsWithTheWholePicture) {
    Scene scene;
    make_room(scene);
    for (const int adaptive : {0, 1}) {
        const Made all = made(scene, {.samples = 400}, "noise", 0.06, "adaptive", adaptive);
        EXPECT_NE(all.comment.find("stopped"), std::string::npos) << all.comment;
        expect_part_of(all.pixels,
                       made(scene, {.samples = 400, .window = part}, "noise", 0.06, "adaptive", adaptive).pixels);
    }
}

TEST(Adaptive, OneThreadMakesTheSameBits) {
    Scene scene;
    make_caustics(scene);
    const Made by_all = made(scene, {.samples = 100}, "adaptive", 1);
    const Made to_an_end = made(scene, {.samples = 300}, "adaptive", 1, "noise", 0.3);
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    EXPECT_EQ(made(scene, {.samples = 100}, "adaptive", 1).pixels.values, by_all.pixels.values);
    EXPECT_EQ(made(scene, {.samples = 300}, "adaptive", 1, "noise", 0.3).pixels.values, to_an_end.pixels.values);
}

TEST(Adaptive, FewSamplesAreTheSameInEveryPixel) {
    Scene scene;
    make_caustics(scene);
    for (const int samples : {1, 5, 16})
        EXPECT_EQ(made(scene, {.samples = samples}, "adaptive", 1).pixels.values,
                  made(scene, {.samples = samples}).pixels.values);
}

// A ball before an even background.
TEST(Adaptive, TheErrorIsLessWhereTheNoiseIsInOnePlace) {
    Scene scene;
    make_ball(scene);
    scene.light("environment", "radiance", 1.0);
    const Asked asked{.width = 48, .height = 48, .samples = 64};
    const Pixels reference = made(scene, {.width = 48, .height = 48, .samples = 1024}, "seed", 9).pixels;
    double squares[2] = {}; // without, with
    for (int seed = 0; seed < 4; ++seed)
        for (const int adaptive : {0, 1}) {
            const Made one = made(scene, asked, "seed", seed, "adaptive", adaptive);
            squares[adaptive] += std::pow(rmse(one.pixels, reference), 2);
            if (adaptive) {
                EXPECT_EQ(number_after(one.comment, "pixels; "), 64) << one.comment;
            }
        }
    EXPECT_LT(squares[1], 0.9 * squares[0]);
}

// Bright paths are rare in caustics: who has met one must not get more samples for it.
TEST(Adaptive, ThePicturesMeanStaysWhereItIs) {
    Scene scene;
    make_caustics(scene);
    constexpr int seeds = 16;
    std::vector<double> differences;
    for (int seed = 0; seed < seeds; ++seed)
        differences.push_back(mean(made(scene, {.samples = 64}, "seed", seed, "adaptive", 1).pixels) -
                              mean(made(scene, {.samples = 64}, "seed", seed + seeds).pixels));
    const double shift = std::accumulate(differences.begin(), differences.end(), 0.0) / seeds;
    double squares = 0;
    for (const double difference : differences)
        squares += (difference - shift) * (difference - shift);
    const double noise_of_one = std::sqrt(squares / (seeds - 1));
    EXPECT_LT(std::fabs(shift), 3 * noise_of_one / std::sqrt(seeds));
}

TEST(Adaptive, BrighterLightMovesNoSample) {
    const auto picture = [](double radiance) {
        Scene scene;
        scene.camera({0, 1, 4}, {0, 0, 0}, 40);
        scene.light("environment", "radiance", radiance);
        scene.MaterialBegin(scene.diffuse(0.5));
        scene.AddObject(scene.object("sphere", "radius", 1.0));
        scene.MaterialEnd();
        return made(scene, {}, "adaptive", 1).pixels;
    };
    const Pixels one = picture(1);
    for (const float factor : {0x1p-30f, 0x1p30f}) {
        Pixels scaled = picture(factor);
        for (scripted::Rgb &value : scaled.values)
            for (float &channel : value)
                channel /= factor;
        EXPECT_EQ(scaled.values, one.values);
    }
}

// At the ball's rim, few samples see it; where none does, depth and position are 0.
TEST(Adaptive, OtherValuesAreMeansOfAllSamples) {
    Scene scene;
    make_ball(scene);
    for (const char *what : {"albedo", "normal", "depth", "depth_z", "position", "alpha"}) {
        List in_all("what", what);
        List placed("what", what);
        const Pixels reference = made(scene, {.samples = 256, .file = &in_all}).pixels;
        Pixels adaptive = made(scene, {.samples = 64, .file = &placed}, "adaptive", 1).pixels;
        for (std::size_t i = 0; i < reference.values.size(); ++i)
            if (adaptive.values[i] == scripted::Rgb{})
                adaptive.values[i] = reference.values[i];
        EXPECT_LT(rmse(adaptive, reference), 0.1) << what;
        EXPECT_NEAR(mean(adaptive), mean(reference), 3e-3 * std::fabs(mean(reference)) + 1e-3) << what;
    }
}

TEST(Adaptive, TheVarianceIsThatOfThePixelsOwnSamples) {
    Scene scene;
    make_room(scene);
    const Pixels reference = made(scene, {.samples = 512}, "seed", 9).pixels;
    List file("what", "variance");
    const double told = mean(made(scene, {.samples = 64, .file = &file}, "adaptive", 1).pixels);
    const double error = rmse(made(scene, {.samples = 64}, "adaptive", 1).pixels, reference);
    EXPECT_GT(told, 0.8 * error * error); // stratified samples have less
    EXPECT_LT(told, 6 * error * error);
}

TEST(Adaptive, APictureOfOnePixelOrOfNoLightIsOne) {
    Scene dark;
    dark.camera({0, 0, 4}, {0, 0, 0}, 40);
    dark.AddObject(dark.object("sphere", "radius", 1.0));
    Scene room;
    make_room(room);
    for (const auto &[width, height] : {std::pair{1, 1}, {1, 9}, {3, 2}, {17, 5}})
        for (const double noise : {0.0, 1e-3}) {
            const Asked asked{.width = width, .height = height, .samples = 40};
            Pixels black;
            const std::string lines =
                errors_of([&] { black = made(dark, asked, "adaptive", 1, "noise", noise).pixels; });
            EXPECT_NE(lines.find("no light"), std::string::npos) << lines;
            EXPECT_EQ(mean(black), 0);
            const Made lit = made(room, asked, "adaptive", 1, "noise", noise);
            EXPECT_GT(mean(lit.pixels), 0);
            EXPECT_EQ(number_after(lit.comment, "pixels; "), 40) << lit.comment;
        }
}

TEST(Adaptive, ATimeLimitEndsIt) {
    Scene scene;
    make_caustics(scene);
    const Made without = made(scene, {.samples = 80}, "adaptive", 1);
    EXPECT_EQ(made(scene, {.samples = 80}, "adaptive", 1, "time_limit", 1000.0).pixels.values, without.pixels.values);
    const Made limited = made(scene, {.samples = 1 << 20}, "adaptive", 1, "time_limit", 1e-6);
    EXPECT_NE(limited.comment.find("16 samples a pixel on average, from 16 to 16; stopped by the time limit, 1048576 "
                                   "were asked for"),
              std::string::npos)
        << limited.comment;
}

TEST(Adaptive, AnInterruptKeepsWhatIsMade) {
    Scene scene;
    make_caustics(scene);
    const Asked asked{.samples = 256};
    long polls = 0;
    {
        const vantor::InterruptAtPoll none(0);
        made(scene, asked, "adaptive", 1);
        polls = none.polls();
    }
    const scripted::InterruptHandler handler;
    const Pixels reference = made(scene, asked).pixels;
    for (const long at : {polls / 3, polls * 3 / 4}) {
        const vantor::InterruptAtPoll interrupt(at);
        const Made stopped = made(scene, asked, "adaptive", 1);
        EXPECT_NE(stopped.comment.find("; interrupted, 256 were asked for"), std::string::npos) << stopped.comment;
        EXPECT_NEAR(mean(stopped.pixels), mean(reference), 0.05 * mean(reference));
    }
    EXPECT_EQ(handler.count(), 2);
}

TEST(Adaptive, APartOfTheSamplesIsReportedAndStaysAsItIs) {
    Scene scene;
    make_caustics(scene);
    const Asked asked{.samples = 32};
    const Made plain = made(scene, asked, "samples_in_all", 64);
    for (const char *what : {"adaptive", "noise"}) {
        Made refused;
        const std::string lines = errors_of([&] { refused = made(scene, asked, "samples_in_all", 64, what, 1); });
        expect_diagnostics(lines, {{.call = "render", .says = "takes all samples of a picture in one pass"}});
        EXPECT_NE(lines.find(what), std::string::npos) << lines;
        EXPECT_EQ(refused.pixels.values, plain.pixels.values);
    }
}

TEST(Adaptive, APictureThatIsTooLargeAsAWholeIsReported) {
    Scene scene;
    make_ball(scene);
    const Asked asked{.width = 65536, .height = 65536, .window = {0.5, 0.5, 0.5001, 0.5001}};
    const std::string lines = errors_of([&] { EXPECT_EQ(made(scene, asked, "adaptive", 1).pixels.width, 0); });
    expect_diagnostics(lines, {{.call = "render", .says = "look at the whole picture, which has more than 268435456"}});
    EXPECT_GT(made(scene, asked).pixels.width, 0);
    Asked few = asked; // no samples remain to be placed: nothing is estimated
    few.samples = 16;
    EXPECT_GT(made(scene, few, "adaptive", 1).pixels.width, 0);
}

TEST(Noise, APassThatReachesAllSamplesIsThatWithoutIt) {
    Scene scene;
    make_room(scene);
    for (const int samples : {5, 16, 40, 100}) {
        const Made plain = made(scene, {.samples = samples});
        const Made watched = made(scene, {.samples = samples}, "noise", 1e-9);
        EXPECT_EQ(watched.pixels.values, plain.pixels.values) << samples;
        EXPECT_EQ(watched.comment.find("stopped"), std::string::npos) << watched.comment;
    }
}

// In rooms the estimate says too much, as it does not know all of the stratification; it must not say too little.
TEST(Noise, ThePassEndsWhereTheErrorIsBelowIt) {
    Scene scene;
    make_room(scene);
    const Pixels reference = made(scene, {.samples = 1024}, "seed", 9).pixels;
    double floor = 0; // how bright the picture is on the whole
    for (const scripted::Rgb &value : reference.values)
        floor += std::sqrt(value[1]);
    floor = std::pow(floor / static_cast<double>(reference.values.size()), 2);
    for (const double noise : {0.2, 0.1})
        for (const int adaptive : {0, 1}) {
            const Made ended = made(scene, {.samples = 4096}, "noise", noise, "adaptive", adaptive);
            EXPECT_NE(ended.comment.find("; stopped as its noise is low enough, 4096 were asked for"),
                      std::string::npos)
                << ended.comment;
            const double told = number_after(ended.comment, "relative error about ");
            EXPECT_LE(told, noise);
            double squares = 0;
            for (std::size_t i = 0; i < reference.values.size(); ++i) {
                const double exact = reference.values[i][1];
                squares += std::pow((ended.pixels.values[i][1] - exact) / std::max(exact, floor), 2);
            }
            const double error = std::sqrt(squares / static_cast<double>(reference.values.size()));
            EXPECT_LT(error, 1.1 * told) << noise << ' ' << adaptive;
            EXPECT_GT(error, 0.5 * told) << noise << ' ' << adaptive;
        }
}

TEST(Noise, EndsAtTheTimeLimitToo) {
    Scene scene;
    make_room(scene);
    const Made limited = made(scene, {.samples = 1 << 20}, "noise", 1e-9, "time_limit", 1e-6);
    EXPECT_NE(limited.comment.find("; stopped by the time limit, 1048576 were asked for"), std::string::npos)
        << limited.comment;
}

TEST(Noise, IsReportedFrom16SamplesOn) {
    Scene scene;
    make_ball(scene);
    EXPECT_EQ(made(scene, {.samples = 15}, "noise", 1.0).comment.find("error"), std::string::npos);
    EXPECT_NE(made(scene, {.samples = 16}, "noise", 1.0).comment.find("error"), std::string::npos);
}

TEST(Noise, ParametersThatAreNoneAreReported) {
    Scene scene;
    const auto errors = [&](const auto &...values) {
        List list(values...);
        return errors_of([&] { scene.NewImager("settings", list); });
    };
    EXPECT_NE(errors("noise", -0.5).find("parameter \"noise\""), std::string::npos);
    EXPECT_NE(errors("noise", "low").find("parameter \"noise\""), std::string::npos);
    EXPECT_NE(errors("adaptive", 2).find("parameter \"adaptive\""), std::string::npos);
}

} // namespace
