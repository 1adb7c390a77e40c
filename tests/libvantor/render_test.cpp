// Render passes: windows, threads, interrupts, several scenes.
#include "tests/libvantor/scripted_scene.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <tbb/global_control.h>
#include <thread>

namespace {

using scripted::Pixels;
using scripted::Scene;

void build(Scene &scene) {
    scene.camera({0.1, 0.2, -0.9}, {0, 0, 1}, 70);
    scene.light("area", "radiance", 3.0);
    scene.AddObject(scene.room());
    scene.AddObject(scene.object("sphere", "center", VtVector3(0.4, -0.5, 0.3), "radius", 0.4));
    scene.AddObject(scene.object("box", "min", VtVector3(-0.8, -1, 0), "max", VtVector3(-0.2, 0, 0.5)));
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-0.3, 0.99, -0.3), "edge_u", VtVector3(0.6, 0, 0),
                                 "edge_v", VtVector3(0, 0, 0.6)));
    scene.LightEnd();
    scene.light("point", "position", VtVector3(-0.5, 0.5, -0.5), "intensity", VtVector3(0.1, 0.2, 0.3));
}

TEST(Render, WindowsHaveThePixelsOfTheWholePicture) {
    Scene scene;
    build(scene);
    // Sides that are no multiple of blocks or tiles.
    constexpr int width = 61;
    constexpr int height = 43;
    const Pixels whole = scene.render(width, height, 20);
    ASSERT_EQ(whole.width, width);
    ASSERT_EQ(whole.height, height);
    const double windows[][4] = {{0, 0, 0.5, 1}, {0.5, 0, 1, 1}, {0.3, 0.4, 0.35, 0.9}, {0.97, 0.98, 1, 1}};
    for (const auto &w : windows) {
        const Pixels part = scene.render(width, height, 20, w[0], w[1], w[2], w[3]);
        ASSERT_FALSE(part.values.empty());
        EXPECT_EQ(part.full_width, width);
        EXPECT_EQ(part.full_height, height);
        for (int y = part.y0; y < part.y0 + part.height; ++y)
            EXPECT_EQ(std::memcmp(&part.at(part.x0, y), &whole.at(part.x0, y),
                                  static_cast<std::size_t>(part.width) * sizeof(scripted::Rgb)),
                      0)
                << "row " << y;
    }
}

TEST(Render, TouchingWindowsShareNoPixelAndLeaveNoneOut) {
    Scene scene;
    build(scene);
    int end = 0;
    for (int i = 0; i < 7; ++i) {
        const Pixels part = scene.render(50, 8, 1, i / 7.0, 0, (i + 1) / 7.0, 1);
        EXPECT_EQ(part.x0, end);
        end = part.x0 + part.width;
    }
    EXPECT_EQ(end, 50);
}

TEST(Render, OneThreadAndManyGiveTheSameBits) {
    Scene scene;
    build(scene);
    const Pixels many = scene.render(64, 48, 16);
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    const Pixels one = scene.render(64, 48, 16);
    EXPECT_EQ(many.values, one.values);
}

TEST(Render, TheSameScenesGiveTheSamePictures) {
    Scene first;
    Scene second;
    build(first);
    build(second);
    EXPECT_EQ(first.render(32, 32, 8).values, second.render(32, 32, 8).values);
}

TEST(Render, ScenesAreIndependent) {
    Scene empty;
    Scene full;
    build(full);
    empty.camera({0, 0, 0}, {0, 0, 1}, 40);
    EXPECT_EQ(empty.render(8, 8, 1).mean(), 0);
    EXPECT_GT(full.render(8, 8, 1).mean(), 0);
    // Ids of one scene mean nothing in the other.
    EXPECT_EQ(scripted::errors_of([&] { empty.AddObject(3); }),
              "vantor: addObject: no entity has the id 3 (the id of an object is wanted)\n");
}

TEST(Render, DirectLightAgreesWithMoreSamples) {
    Scene scene;
    build(scene);
    // The mean of a picture is unbiased at any number of samples; 1024 pixels at 16 and 256 samples.
    const double few = scene.render(32, 32, 16).mean();
    const double many = scene.render(32, 32, 256).mean();
    EXPECT_NEAR(few, many, 0.02 * many);
}

std::atomic<int> interrupts_seen = 0;
void count_interrupt(int) { ++interrupts_seen; }

TEST(Render, InterruptStopsThePassAndReachesTheOldHandler) {
    Scene scene;
    build(scene);
    struct sigaction ours = {};
    ours.sa_handler = count_interrupt;
    struct sigaction old;
    sigaction(SIGINT, &ours, &old);
    interrupts_seen = 0;

    std::chrono::steady_clock::time_point raised;
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        raised = std::chrono::steady_clock::now();
        kill(getpid(), SIGINT);
    });
    Pixels pixels;
    const std::string errors = scripted::errors_of([&] { pixels = scene.render(2048, 2048, 1 << 20); });
    const auto late = std::chrono::steady_clock::now() - raised;
    other.join();

    EXPECT_TRUE(pixels.values.empty()) << "a file was written";
    EXPECT_EQ(errors, "vantor: render: interrupted; no picture is written\n");
    EXPECT_EQ(interrupts_seen, 1);
    EXPECT_LT(late, std::chrono::milliseconds(250));

    // The old handler is back, and the next pass is whole.
    struct sigaction after;
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, &count_interrupt);
    EXPECT_FALSE(scene.render(8, 8, 1).values.empty());
    sigaction(SIGINT, &old, nullptr);
}

TEST(Render, InterruptStopsTheBuildOfALargeScene) {
    Scene scene;
    scene.camera({0, 0, 5}, {0, 0, 0}, 40);
    constexpr int side = 700;
    {
        scripted::Points points;
        scripted::Indices triangles;
        points.SetSize((side + 1) * (side + 1));
        triangles.SetSize(side * side * 6);
        // Written through whole blocks: an array of one block is one stretch.
        auto *point = points.FirstBlock()->data;
        auto *index = triangles.FirstBlock()->data;
        for (int j = 0; j <= side; ++j)
            for (int i = 0; i <= side; ++i)
                *point++ = {i * 1.0 / side, j * 1.0 / side, 0.01 * ((i * 31 + j * 17) % 13)};
        for (int j = 0; j < side; ++j)
            for (int i = 0; i < side; ++i) {
                const VtLong a = j * (side + 1) + i;
                for (const VtLong k : {a, a + 1, a + side + 2, a, a + side + 2, a + side + 1})
                    *index++ = k;
            }
        scene.AddObject(scene.object("mesh", "points", points, "triangles", triangles));
    }
    struct sigaction ours = {};
    ours.sa_handler = count_interrupt;
    struct sigaction old;
    sigaction(SIGINT, &ours, &old);
    interrupts_seen = 0;
    std::chrono::steady_clock::time_point raised;
    // A million triangles take longer than this to build.
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        raised = std::chrono::steady_clock::now();
        kill(getpid(), SIGINT);
    });
    Pixels pixels;
    scripted::errors_of([&] { pixels = scene.render(2048, 2048, 4096); });
    const auto late = std::chrono::steady_clock::now() - raised;
    other.join();
    sigaction(SIGINT, &old, nullptr);
    EXPECT_TRUE(pixels.values.empty());
    EXPECT_EQ(interrupts_seen, 1);
    EXPECT_LT(late, std::chrono::milliseconds(250));
}

TEST(Render, AnIgnoredInterruptStaysIgnored) {
    Scene scene;
    build(scene);
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction old;
    sigaction(SIGINT, &ignored, &old);
    std::thread other([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        kill(getpid(), SIGINT);
    });
    const Pixels pixels = scene.render(256, 256, 16);
    other.join();
    sigaction(SIGINT, &old, nullptr);
    EXPECT_FALSE(pixels.values.empty());
}

} // namespace
