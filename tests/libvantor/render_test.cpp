// Render passes: windows, threads, interrupts, several scenes.
#include "tests/libvantor/interrupted_report.h"
#include "tests/libvantor/picture_readers.h"
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/base/interrupt.h"
#include "libvantor/base/progress.h"
#include "tests/libvantor/interrupts.h"

#include <atomic>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <pthread.h>
#include <regex>
#include <sys/wait.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#include <thread>
#include <unistd.h>

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
    // Built on one thread, too.
    Scene other;
    build(other);
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    const Pixels one = other.render(64, 48, 16);
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
              "vantor: addObject: no entity has the id 3 (expected the id of an object)\n");
}

TEST(Render, DirectLightAgreesWithMoreSamples) {
    Scene scene;
    build(scene);
    // The mean of a picture is unbiased at any number of samples; 1024 pixels at 16 and 256 samples.
    const double few = scene.render(32, 32, 16).mean();
    const double many = scene.render(32, 32, 256).mean();
    EXPECT_NEAR(few, many, 0.02 * many);
}

TEST(Render, InterruptStopsThePassAndReachesTheOldHandler) {
    Scene scene;
    build(scene);
    const scripted::InterruptHandler handler;
    {
        // So many samples that no pixel is ever finished.
        const vantor::InterruptAtPoll interrupt(50);
        Pixels pixels;
        EXPECT_EQ(scripted::errors_of([&] { pixels = scene.render(2048, 2048, 1 << 20); }),
                  "vantor: render: interrupted; no picture is written\n");
        EXPECT_TRUE(pixels.values.empty()) << "a file was written";
        EXPECT_EQ(handler.count(), 1);
        EXPECT_TRUE(handler.is_in_place());
    }
    // The next pass is whole.
    EXPECT_FALSE(scene.render(8, 8, 1).values.empty());
}

TEST(Render, InterruptKeepsWhatIsFinished) {
    Scene scene;
    build(scene);
    const scripted::InterruptHandler handler;
    const std::string exr = scripted::path_of("interrupted.exr");
    const std::string jpeg = scripted::path_of("interrupted.jpg");
    const auto imager = [&](const std::string &path) {
        scripted::List list("name", path);
        return scene.NewImager("file", list);
    };
    scene.ImagerBegin(imager(exr));
    scene.ImagerBegin(imager(jpeg));
    // Some blocks of pixels are finished then, and others are not.
    std::string errors;
    {
        const vantor::InterruptAtPoll interrupt(500);
        errors = scripted::errors_of([&] { scene.Render(800, 800, 256, 0, 0, 1, 1); });
    }
    scene.ImagerEnd();
    scene.ImagerEnd();
    EXPECT_EQ(handler.count(), 1);

    std::smatch found;
    const std::regex lines("vantor: render: interrupted; ((?:less than )?\\d+) % of the pixels are in \"" + exr +
                           "\"\nvantor: render: interrupted; \\1 % of the pixels are in \"" + jpeg + "\"\n");
    ASSERT_TRUE(std::regex_match(errors, found, lines)) << errors;
    const std::string comment =
        "vantorPM " VANTOR_VERSION "; 800 x 800 pixels; 256 samples a pixel; interrupted: " + found[1].str() +
        " % of the pixels are finished";
    EXPECT_EQ(scripted::exr_comment(exr), comment);
    EXPECT_EQ(scripted::read_jpeg(jpeg).comment, comment);

    // The room is lit everywhere: what is black is not finished, and what is not black is as it would have been.
    const Pixels pixels = scripted::read_exr(exr);
    long finished = 0;
    int x = -1;
    int y = -1;
    for (int i = 0; i < 800 * 800; ++i)
        if (pixels.values[static_cast<std::size_t>(i)] != scripted::Rgb{}) {
            ++finished;
            x = i % 800;
            y = i / 800;
        }
    ASSERT_GT(finished, 0);
    const std::string share = found[1].str();
    const long percent = share == "less than 1" ? 0 : std::stol(share);
    EXPECT_EQ(finished * 100 / (800 * 800), percent);
    const Pixels one = scene.render(800, 800, 256, x / 800.0, y / 800.0, (x + 1) / 800.0, (y + 1) / 800.0);
    EXPECT_EQ(one.at(x, y), pixels.at(x, y));
}

TEST(Render, InterruptIsHeardWhileImagersAreChecked) {
    Scene scene;
    build(scene);
    const std::string path = scripted::path_of("early.exr");
    const auto imager = [&](const std::string &name) {
        scripted::List list("name", name);
        return scene.NewImager("file", list);
    };
    scene.ImagerBegin(imager(path));
    scene.ImagerBegin(imager("/no such folder/picture.exr"));
    const std::string errors =
        scripted::errors_when_interrupted_at_first_diagnostic([&] { scene.Render(2048, 2048, 1 << 20, 0, 0, 1, 1); });
    EXPECT_TRUE(errors.starts_with("vantor: render: cannot write \"/no such folder/picture.exr\"")) << errors;
    EXPECT_TRUE(errors.ends_with("vantor: render: interrupted; no picture is written\n")) << errors;
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Render, TimeLeftIsShownInTwoUnitsAtMost) {
    EXPECT_EQ(vantor::time_text(0.4), "0 s");
    EXPECT_EQ(vantor::time_text(59.4), "59 s");
    EXPECT_EQ(vantor::time_text(59.6), "1 min 0 s");
    EXPECT_EQ(vantor::time_text(200), "3 min 20 s");
    EXPECT_EQ(vantor::time_text(7500), "2 h 5 min");
}

TEST(Render, AnIgnoredInterruptStaysIgnored) {
    Scene scene;
    build(scene);
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction old;
    sigaction(SIGINT, &ignored, &old);
    const vantor::InterruptAtPoll interrupt(5);
    const Pixels pixels = scene.render(32, 32, 16);
    EXPECT_GT(interrupt.polls(), 5);
    sigaction(SIGINT, &old, nullptr);
    EXPECT_FALSE(pixels.values.empty());
}

TEST(Render, AThreadWithASmallStackMayCall) {
    Scene scene;
    build(scene);
    const std::string path = scripted::path_of("small_stack.exr");
    scripted::List list("name", path);
    scene.NewImager("file", list);
    const auto run = [](void *argument) -> void * {
        auto &its_scene = *static_cast<Scene *>(argument);
        its_scene.Radiosity();
        its_scene.Render(8, 8, 4, 0, 0, 1, 1);
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 64 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &scene), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(scripted::read_exr(path).values, scene.render(8, 8, 4).values);
}

std::ptrdiff_t threads_of_this_process() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::distance(begin(threads), end(threads));
}

// What a process that is forked off here draws; its status.
int drawn_by_a_fork(Scene &scene, const Pixels &expected) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        const bool is_alone = threads_of_this_process() == 1;
        const bool is_same = scene.render(32, 32, 4).values == expected.values;
        const bool has_help = threads_of_this_process() > 1 || std::thread::hardware_concurrency() == 1;
        _exit(is_alone && is_same && has_help ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST(Render, AForkStartsItsOwnThreads) {
    Scene scene;
    build(scene);
    const Pixels expected = scene.render(32, 32, 4);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(drawn_by_a_fork(scene, expected), 0);
        EXPECT_EQ(threads_of_this_process(), 1);
        EXPECT_EQ(scene.render(32, 32, 4).values, expected.values);
    }
}

TEST(Render, AForkFromAThreadThatHasRenderedNothing) {
    Scene scene;
    build(scene);
    const Pixels expected = scene.render(32, 32, 4);
    for (int i = 0; i < 20; ++i) {
        int status = -1;
        std::thread([&] { status = drawn_by_a_fork(scene, expected); }).join();
        EXPECT_EQ(status, 0);
        EXPECT_EQ(threads_of_this_process(), 1);
        scene.render(32, 32, 4);
    }
}

// What another part of the process has started with oneTBB stays its own.
TEST(Render, APassWithinATaskOfAnotherUserOfOneTbb) {
    Scene scene;
    build(scene);
    const Pixels expected = scene.render(8, 8, 4);
    std::atomic<int> same = 0;
    std::mutex one_at_a_time;
    tbb::parallel_for(0, 4, [&](int) {
        const std::lock_guard lock(one_at_a_time);
        tbb::this_task_arena::isolate([&] { same += scene.render(8, 8, 4).values == expected.values; });
    });
    EXPECT_EQ(same, 4);
}

} // namespace
