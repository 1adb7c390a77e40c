// The denoiser: less noise, the same light, and the same bits in every window and on any number of threads.
#include "libvantor/denoising/denoiser.h"
#include "libvantor/denoising/pair_filter.h"
#include "libvantor/denoising/pair_weights.h"
#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/noisy_scenes.h"

#include <gtest/gtest.h>
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
using vantor::Aov;
using vantor::Color;
using vantor::FrameBuffer;

constexpr int side = 48;

template <class... Values>
Pixels rendered(Scene &scene, int samples, const std::array<double, 4> &window, const Values &...values) {
    const std::string path = path_of("denoised.exr");
    std::filesystem::remove(path);
    List list("name", path, values...);
    scene.ImagerBegin(scene.NewImager("file", list));
    scene.Render(side, side, samples, window[0], window[1], window[2], window[3]);
    scene.ImagerEnd();
    return std::filesystem::exists(path) ? scripted::read_exr(path) : Pixels();
}

constexpr std::array<double, 4> whole = {0, 0, 1, 1};

Pixels raw(Scene &scene, int samples) { return rendered(scene, samples, whole); }
Pixels denoised(Scene &scene, int samples) { return rendered(scene, samples, whole, "denoise", 1); }

TEST(Denoiser, HalvesTheErrorOfARoomInIndirectLight) {
    Scene scene;
    make_room(scene);
    const Pixels reference = raw(scene, 256);
    EXPECT_LT(rmse(denoised(scene, 8), reference), 0.5 * rmse(raw(scene, 8), reference));
}

TEST(Denoiser, IsNeverWorseThanThePictureAsItIsInCaustics) {
    Scene scene;
    make_caustics(scene);
    const Pixels reference = raw(scene, 1024);
    for (const int samples : {2, 4, 16, 128})
        EXPECT_LT(rmse(denoised(scene, samples), reference), 1.05 * rmse(raw(scene, samples), reference))
            << samples << " samples";
}

TEST(Denoiser, LosesNoLight) {
    for (const auto make : {make_room, make_caustics, make_ball})
        for (const int samples : {2, 7, 16}) {
            Scene scene;
            make(scene);
            const double before = mean(raw(scene, samples));
            EXPECT_NEAR(mean(denoised(scene, samples)), before, 1e-5 * before);
        }
}

TEST(Denoiser, AWindowHasThePixelsOfTheWholePicture) {
    Scene scene;
    make_caustics(scene);
    const Pixels all = denoised(scene, 4);
    const Pixels part = rendered(scene, 4, {0.75, 0.5, 0.9, 0.625}, "denoise", 1);
    ASSERT_EQ(part.width, 7);
    ASSERT_EQ(part.height, 6);
    for (int y = part.y0; y < part.y0 + part.height; ++y)
        for (int x = part.x0; x < part.x0 + part.width; ++x)
            ASSERT_EQ(part.at(x, y), all.at(x, y)) << x << ' ' << y;
}

// Of 16 samples of a plane surface in noisy light.
FrameBuffer noisy_frame(int width, int height) {
    FrameBuffer frame(width, height, {0, 0, width, height});
    frame.add(Aov::Color);
    frame.add_guides();
    for (std::size_t i = 0; i < frame.guides.size(); ++i) {
        vantor::GuideSums &sums = frame.guides[i];
        sums.albedo = Color{8, 8, 8};
        sums.normal = {0, 0, 16};
        sums.surfaces = 16;
        for (std::size_t run = 0; run < vantor::run_count; ++run) {
            const float value =
                vantor::sobol::unit_float(vantor::sobol::hash(static_cast<std::uint32_t>(i * vantor::run_count + run)));
            sums.radiance[run] = Color{1, 1, 1} * (2 * value * value * value * value);
            frame.of(Aov::Color).pixels[i] += sums.radiance[run] * (1.0f / 16);
        }
    }
    return frame;
}

TEST(Denoiser, HowManyRowsAreDoneAtOnceMakesNoDifference) {
    constexpr int width = 23, height = 80;
    const FrameBuffer frame = noisy_frame(width, height);
    const vantor::Interrupt interrupt;
    const vantor::NoisyPixels pixels = vantor::noisy_pixels(frame, {0, 16, 16}, interrupt);
    const vantor::Planes *const irradiances[] = {&pixels.irradiance};
    const auto gains = [&](int rows) { return vantor::pair_gains(pixels, irradiances, rows, interrupt).at(0); };
    const vantor::Planes all = gains(height);
    EXPECT_NE(all.x, vantor::Plane(all.x.size()));
    for (const int rows : {1, 7, 79}) {
        const vantor::Planes some = gains(rows);
        EXPECT_EQ(some.x, all.x) << rows;
        EXPECT_EQ(some.y, all.y) << rows;
        EXPECT_EQ(some.z, all.z) << rows;
    }
    EXPECT_GE(vantor::rows_at_once(1), 64);
    EXPECT_GE(vantor::rows_at_once(1 << 30), 64);
}

// In a picture that is larger than the margin, so that the window does not need all of it.
TEST(Denoiser, ALargerPicturesMarginIsWideEnough) {
    constexpr int width = 160;
    const FrameBuffer frame = noisy_frame(width, width);
    const vantor::SampleRange samples{0, 16, 16};
    const vantor::Interrupt interrupt;
    const FrameBuffer all = vantor::denoised(frame, samples, frame.window(), interrupt);

    const vantor::PixelArea window{79, 80, 81, 81};
    const vantor::PixelArea area = vantor::with_denoiser_margin(window, width, width);
    EXPECT_GT(area.x0, 0);
    EXPECT_LT(area.x1, width);
    FrameBuffer some = vantor::cropped(frame, area);
    some.add_guides();
    for (int y = area.y0; y < area.y1; ++y)
        for (int x = area.x0; x < area.x1; ++x)
            some.guides[some.index(x, y)] = frame.guides[frame.index(x, y)];
    const FrameBuffer part = vantor::denoised(some, samples, window, interrupt);
    for (int x = window.x0; x < window.x1; ++x) {
        EXPECT_EQ(part.of(Aov::Color).at(x, 80).r, all.of(Aov::Color).at(x, 80).r);
        EXPECT_NE(part.of(Aov::Color).at(x, 80).r, frame.of(Aov::Color).at(x, 80).r);
    }
}

TEST(Denoiser, OneThreadMakesTheSameBits) {
    Scene scene;
    make_caustics(scene);
    const Pixels by_all = denoised(scene, 4);
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    EXPECT_EQ(denoised(scene, 4).values, by_all.values);
}

TEST(Denoiser, ATimeLimitThatIsNotReachedMakesTheSameBits) {
    Scene scene;
    make_room(scene);
    const Pixels without = denoised(scene, 40);
    List list("time_limit", 1000.0);
    scene.ImagerBegin(scene.NewImager("settings", list));
    EXPECT_EQ(denoised(scene, 40).values, without.values);
    scene.ImagerEnd();
}

// One pass writes both, and the other file's pixels are those without a denoiser.
TEST(Denoiser, OtherFilesOfThePassStayAsTheyAre) {
    Scene scene;
    make_caustics(scene);
    for (const char *what : {"color", "albedo", "normal", "depth", "variance", "alpha"}) {
        const Pixels alone = rendered(scene, 4, whole, "what", what);
        const std::string path = path_of("smooth.exr");
        List smooth("name", path, "denoise", 1);
        scene.ImagerBegin(scene.NewImager("file", smooth));
        EXPECT_EQ(rendered(scene, 4, whole, "what", what).values, alone.values) << what;
        scene.ImagerEnd();
    }
}

TEST(Denoiser, WhatIsNoSurfaceStaysBlackWithoutABackground) {
    Scene scene;
    make_ball(scene);
    const Pixels before = rendered(scene, 8, whole, "background", 0);
    const Pixels after = rendered(scene, 8, whole, "background", 0, "denoise", 1);
    EXPECT_EQ(after.at(0, 0), (scripted::Rgb{0, 0, 0}));
    EXPECT_NEAR(mean(after), mean(before), 1e-5 * mean(before));
    EXPECT_NE(after.values, before.values);
}

// A lamp and the wall beside it are the same to all guides; its light stays where it is.
TEST(Denoiser, LampsHaveNoHalo) {
    Scene scene;
    scene.camera({0, 0, 4}, {0, 0, 0}, 40);
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-4, -4, 0), "edge_u", VtVector3(8, 0, 0), "edge_v",
                                 VtVector3(0, 8, 0)));
    scene.MaterialEnd();
    scene.light("area", "radiance", 20.0);
    scene.LightBegin();
    scene.AddObject(scene.object("disk", "radius", 0.6, "center", VtVector3(0, 0, 0.001)));
    scene.LightEnd();
    EXPECT_LT(rmse(denoised(scene, 2), raw(scene, 2)), 1e-5);
}

TEST(Denoiser, LeavesAPictureWithoutNoiseAlone) {
    Scene scene;
    scene.camera({0, 0, 4}, {0, 0, 0}, 40);
    scene.light("environment", "radiance", VtVector3(0.25, 0.5, 1));
    EXPECT_EQ(denoised(scene, 8).values, raw(scene, 8).values);
}

// A checker behind glass and in a mirror is sharp: its albedo guides there, too.
TEST(Denoiser, WhatIsSeenInAMirrorGuides) {
    const auto edge = [](bool is_in_mirror) {
        Scene scene;
        List nothing;
        List colors("a", 0.9, "b", 0.3, "scale", 1.0);
        List matt("interface", static_cast<int>(scene.NewInterface("diffuse", nothing)), "color",
                  static_cast<int>(scene.NewPattern("checker", colors)));
        scene.light("environment", "radiance", 1.0);
        scene.camera({0.1, 0.2, is_in_mirror ? 1.0 : -3.0}, {0.1, 0.2, is_in_mirror ? 4.0 : 0.0}, 40);
        scene.MaterialBegin(scene.NewMaterial("surface", matt));
        scene.AddObject(scene.object("quad", "origin", VtVector3(-4, -4, 0), "edge_u", VtVector3(0, 8, 0), "edge_v",
                                     VtVector3(8, 0, 0)));
        scene.MaterialEnd();
        if (is_in_mirror) {
            scene.MaterialBegin(scene.surface("conductor", "metal", "silver"));
            scene.AddObject(scene.object("quad", "origin", VtVector3(-9, -9, 4), "edge_u", VtVector3(0, 18, 0),
                                         "edge_v", VtVector3(18, 0, 0)));
            scene.MaterialEnd();
        }
        const Pixels reference = raw(scene, 128);
        return rmse(denoised(scene, 4), reference) / rmse(raw(scene, 4), reference);
    };
    EXPECT_LT(edge(false), 1.0);
    EXPECT_LT(edge(true), 1.0);
}

TEST(Denoiser, ThinShadowsStay) {
    Scene scene;
    scene.camera({0, 4, 0.01}, {0, 0, 0}, 40);
    scene.light("distant", "direction", VtVector3(0.6, -1, 0), "irradiance", 3.0);
    scene.light("environment", "radiance", 0.2);
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-6, 0, 6), "edge_u", VtVector3(12, 0, 0), "edge_v",
                                 VtVector3(0, 0, -12)));
    scene.AddObject(scene.object("box", "min", VtVector3(-0.6, 0.5, -1), "max", VtVector3(-0.5, 0.52, 1)));
    scene.MaterialEnd();
    const Pixels reference = raw(scene, 256);
    const Pixels picture = denoised(scene, 16);
    EXPECT_LT(rmse(picture, reference), 1.02 * rmse(raw(scene, 16), reference));
    // The darkest column of the shadow.
    const auto darkest = [](const Pixels &of) {
        float least = 1e9f;
        for (int x = 0; x < side; ++x)
            least = std::min(least, of.at(x, side / 2)[1]);
        return least;
    };
    EXPECT_NEAR(darkest(picture), darkest(reference), 0.2f * darkest(reference));
}

TEST(Denoiser, BadValuesAreReported) {
    Scene scene;
    const auto errors = [&](const auto &...values) {
        List list("name", "x.exr", values...);
        return errors_of([&] { scene.NewImager("file", list); });
    };
    EXPECT_EQ(errors("denoise", 1), "");
    EXPECT_EQ(errors("denoise", 0), "");
    EXPECT_NE(errors("denoise", 2).find("parameter \"denoise\""), std::string::npos);
    EXPECT_NE(errors("denoise", "yes").find("parameter \"denoise\""), std::string::npos);
    EXPECT_NE(errors("what", "albedo", "denoise", 1).find("has an effect on \"color\" only"), std::string::npos);
    EXPECT_NE(errors("denoised", 1).find("(did you mean \"denoise\"?)"), std::string::npos);
}

TEST(Denoiser, APartOfTheSamplesIsDenoisedByItself) {
    Scene scene;
    make_ball(scene);
    List list("samples_in_all", 32);
    scene.ImagerBegin(scene.NewImager("settings", list));
    const Pixels part = raw(scene, 16);
    const Pixels smooth = denoised(scene, 16);
    scene.ImagerEnd();
    EXPECT_NE(smooth.values, part.values);
    EXPECT_NEAR(mean(smooth), mean(part), 1e-5 * mean(part));
}

TEST(Denoiser, OfOneSampleNothingIsKnown) {
    Scene scene;
    make_ball(scene);
    Pixels one;
    const std::string errors = errors_of([&] { one = denoised(scene, 1); });
    EXPECT_NE(errors.find("2 samples"), std::string::npos) << errors;
    EXPECT_EQ(one.values, raw(scene, 1).values);
}

TEST(Denoiser, InterruptsAreHeardInEveryRow) {
    FrameBuffer frame(side, side, {0, 0, side, side});
    frame.add(Aov::Color);
    frame.add_guides();
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    scripted::expect_prompt(4L * side, [&] {
        const vantor::Interrupt interrupt;
        vantor::denoised(frame, {0, 4, 4}, frame.window(), interrupt);
    });
}

} // namespace
