// Picture files: what they hold, and that they are written whole or not at all.
#include "tests/libvantor/picture_readers.h"
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/images/files.h"
#include "libvantor/images/temporary_file.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace {

namespace fs = std::filesystem;
using scripted::contents_of;
using scripted::read_png;
using scripted::Scene;

// A picture of one colour: the front of a light that fills the view.
void build(Scene &scene, const VtVector3 &radiance) {
    scene.camera({0, 0, 3}, {0, 0, 0}, 10);
    scene.light("area", "radiance", radiance);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.LightEnd();
}

VtLong file_imager(Scene &scene, const std::string &path, double exposure = 0) {
    scripted::List list("name", path, "exposure", exposure);
    return scene.NewImager("file", list);
}

std::vector<std::string> names_in(const fs::path &folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    return names;
}

/// Until it goes out of scope, a file may have so many bytes.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : old_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, old_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

  private:
    void (*old_handler)(int);
    rlimit before{};
};

TEST(Pictures, SrgbCurveHasItsKnownValues) {
    EXPECT_EQ(vantor::srgb_byte(0), 0);
    EXPECT_EQ(vantor::srgb_byte(1), 255);
    EXPECT_EQ(vantor::srgb_byte(0.5f), 188);
    EXPECT_EQ(vantor::srgb_byte(0.18f), 118);
    EXPECT_EQ(vantor::srgb_byte(0.002f), 7);
    EXPECT_EQ(vantor::srgb_byte(-3), 0);
    EXPECT_EQ(vantor::srgb_byte(1e30f), 255);
}

TEST(Pictures, FilmicCurveIsThePublishedOneAndClipsWhatCannotBeShown) {
    // 0.8 of the published fit at 1, worked out by hand: 2.54 / 3.16.
    EXPECT_NEAR(vantor::filmic(1), 0.803797f, 1e-6f);
    EXPECT_EQ(vantor::filmic(0), 0);
    EXPECT_EQ(vantor::filmic(-1), 0);
    EXPECT_NEAR(vantor::filmic(3e38f), 2.51f / 2.43f, 1e-4f);
    float last = 0;
    for (float x = 0.01f; x < 100; x *= 1.1f) {
        EXPECT_GT(vantor::filmic(x), last);
        last = vantor::filmic(x);
    }
    EXPECT_EQ(vantor::shown(3e38f, vantor::Display::Filmic), 255);
    EXPECT_EQ(vantor::shown(1, vantor::Display::Filmic), vantor::srgb_byte(0.803797f));
}

// Smooth, so that JPEG keeps it; its sides are no multiple of tiles, blocks or strips.
vantor::Picture smooth_picture() {
    vantor::Picture picture(300, 200, {17, 23, 17 + 203, 23 + 101});
    for (int y = picture.window.y0; y < picture.window.y1; ++y)
        for (int x = picture.window.x0; x < picture.window.x1; ++x)
            picture.at(x, y) = {static_cast<float>(x) / 300, static_cast<float>(y) / 200,
                                0.5f + 0.4f * std::sin(0.02f * static_cast<float>(x + y))};
    return picture;
}

TEST(Pictures, FilesOfBytesHoldThePixelsAndTheComment) {
    const vantor::Picture picture = smooth_picture();
    for (const char *name : {"round.png", "round.jpg", "round.jpeg", "round.tif", "round.tiff"}) {
        for (const vantor::Display display :
             {vantor::Display::Srgb, vantor::Display::Linear, vantor::Display::Filmic}) {
            const std::string path = scripted::path_of(name);
            ASSERT_EQ(vantor::write_picture(picture, {0.75f, display, "how it was made"}, path), "");
            const scripted::Bytes bytes = scripted::read_bytes(path);
            EXPECT_EQ(bytes.comment, "how it was made") << name;
            ASSERT_EQ(bytes.width, 203u) << name;
            ASSERT_EQ(bytes.height, 101u) << name;
            // JPEG rounds frequencies and colours: at this quality no more than a few steps.
            const int most = std::string(name).find(".j") != std::string::npos ? 4 : 0;
            int worst = 0;
            for (unsigned y = 0; y < bytes.height; ++y)
                for (unsigned x = 0; x < bytes.width; ++x) {
                    const vantor::Color &c = picture.at(static_cast<int>(x) + 17, static_cast<int>(y) + 23);
                    const float values[] = {c.r, c.g, c.b};
                    for (unsigned i = 0; i < 3; ++i)
                        worst =
                            std::max(worst, std::abs(bytes.at(x, y, i) - vantor::shown(0.75f * values[i], display)));
                }
            EXPECT_LE(worst, most) << name;
        }
    }
}

TEST(Pictures, JpegKeepsColoursInFullResolution) {
    // Columns of red and green in turn: halved, they would be one brown.
    vantor::Picture picture(32, 16, {0, 0, 32, 16});
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            picture.at(x, y) = x % 2 == 0 ? vantor::Color{1, 0, 0} : vantor::Color{0, 1, 0};
    const std::string path = scripted::path_of("columns.jpg");
    ASSERT_EQ(vantor::write_picture(picture, {}, path), "");
    const scripted::Bytes bytes = scripted::read_jpeg(path);
    EXPECT_GT(bytes.at(16, 8, 0) - bytes.at(16, 8, 1), 200);
    EXPECT_GT(bytes.at(17, 8, 1) - bytes.at(17, 8, 0), 200);
}

TEST(Pictures, ExrFilesAreTiledAndHoldExactValuesAndTheComment) {
    const vantor::Picture picture = smooth_picture();
    const std::string path = scripted::path_of("round.exr");
    ASSERT_EQ(vantor::write_picture(picture, {1, vantor::Display::Filmic, "how it was made"}, path), "");
    EXPECT_EQ(scripted::exr_comment(path), "how it was made");
    {
        const Imf::InputFile file(path.c_str(), 0);
        ASSERT_TRUE(file.header().hasTileDescription());
        EXPECT_EQ(file.header().tileDescription().xSize, 64u);
        EXPECT_EQ(file.header().tileDescription().ySize, 64u);
    }
    const scripted::Pixels pixels = scripted::read_exr(path);
    ASSERT_EQ(pixels.width, 203);
    ASSERT_EQ(pixels.height, 101);
    for (int y = 23; y < 124; ++y)
        for (int x = 17; x < 220; ++x) {
            const vantor::Color &c = picture.at(x, y);
            ASSERT_EQ(pixels.at(x, y), (scripted::Rgb{c.r, c.g, c.b})) << x << ", " << y;
        }
}

TEST(Pictures, APictureTooWideForJpegIsRefusedBeforeRendering) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string path = scripted::path_of("wide.jpg");
    scene.ImagerBegin(file_imager(scene, path));
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(65501, 4000, 1 << 24, 0, 0, 1, 1); }),
              "vantor: render: cannot write \"" + path + "\": a JPEG file has at most 65500 pixels a side\n");
    scene.ImagerEnd();
    EXPECT_FALSE(fs::exists(path));
    const vantor::Picture picture(65501, 1, {0, 0, 65501, 1});
    EXPECT_EQ(vantor::why_unwritable(path, 65500, 1), "");
    // The library's own word, should anyone ask it.
    EXPECT_EQ(vantor::write_picture(picture, {}, path), "Maximum supported image dimension is 65500 pixels");
    EXPECT_FALSE(fs::exists(path));
}

TEST(Pictures, CommentSaysHowThePictureWasMade) {
    Scene scene;
    build(scene, {1, 1, 1});
    for (const char *name : {"comment.png", "comment.jpg", "comment.tif", "comment.exr"}) {
        const std::string path = scripted::path_of(name);
        scene.ImagerBegin(file_imager(scene, path));
        scene.Render(10, 6, 3, 0, 0, 0.5, 1);
        scene.ImagerEnd();
        const bool is_exr = path.ends_with(".exr");
        EXPECT_EQ(is_exr ? scripted::exr_comment(path) : scripted::read_bytes(path).comment,
                  "vantorPM " VANTOR_VERSION "; 10 x 6 pixels; 3 samples a pixel");
    }
}

TEST(Pictures, DisplayIsForBytesOnly) {
    Scene scene;
    build(scene, {0.5, 0.18, 2});
    const auto imager = [&](const std::string &path, const char *display) {
        scripted::List list("name", path, "display", display);
        return scene.NewImager("file", list);
    };
    const std::string path = scripted::path_of("display.png");
    for (const char *display : {"linear", "filmic", "srgb"}) {
        imager(path, display);
        scene.Render(4, 4, 1, 0, 0, 1, 1);
        const std::string word = display;
        const auto form = word == "linear"   ? vantor::Display::Linear
                          : word == "filmic" ? vantor::Display::Filmic
                                             : vantor::Display::Srgb;
        EXPECT_EQ(read_png(path).at(1, 1, 1), vantor::shown(0.18f, form)) << display;
    }
    EXPECT_EQ(scripted::errors_of([&] { imager(scripted::path_of("display.exr"), "filmic"); }),
              "vantor: newImager \"file\": item 3: parameter \"display\" has no effect on an .exr file, which is "
              "linear\n");
}

TEST(Pictures, EveryOpenImagerWritesItsFile) {
    Scene scene;
    build(scene, {0.5, 0.18, 2});
    const std::string png = scripted::path_of("each.png");
    const std::string exr = scripted::path_of("each.EXR");
    const std::string darker = scripted::path_of("darker.exr");
    scene.ImagerBegin(file_imager(scene, png));
    scene.ImagerBegin(file_imager(scene, exr));
    scene.ImagerBegin(file_imager(scene, darker, -2));
    scene.Render(10, 6, 1, 0, 0, 1, 1);
    scene.ImagerEnd();
    scene.ImagerEnd();
    scene.ImagerEnd();

    const scripted::Bytes bytes = read_png(png);
    EXPECT_EQ(bytes.width, 10u);
    EXPECT_EQ(bytes.height, 6u);
    ASSERT_EQ(bytes.values.size(), 180u);
    EXPECT_EQ(bytes.values[90], 188);
    EXPECT_EQ(bytes.values[91], 118);
    EXPECT_EQ(bytes.values[92], 255);
    EXPECT_EQ(scripted::read_exr(exr).at(5, 3), (scripted::Rgb{0.5f, 0.18f, 2}));
    EXPECT_EQ(scripted::read_exr(darker).at(5, 3), (scripted::Rgb{0.125f, 0.045f, 0.5f}));
}

TEST(Pictures, WithoutAnOpenBlockTheImagerMadeLastWrites) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string first = scripted::path_of("first.png");
    const std::string last = scripted::path_of("last.png");
    file_imager(scene, first);
    file_imager(scene, last);
    scene.Render(7, 4, 1, 0, 0, 1, 1);
    EXPECT_FALSE(fs::exists(first));
    EXPECT_EQ(read_png(last).width, 7u);
}

TEST(Pictures, WindowIsCroppedInPngAndADataWindowInExr) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string png = scripted::path_of("window.png");
    scene.ImagerBegin(file_imager(scene, png));
    const scripted::Pixels pixels = scene.render(20, 10, 1, 0.25, 0.5, 0.75, 1);
    scene.ImagerEnd();
    EXPECT_EQ(pixels.x0, 5);
    EXPECT_EQ(pixels.y0, 5);
    EXPECT_EQ(pixels.width, 10);
    EXPECT_EQ(pixels.height, 5);
    EXPECT_EQ(pixels.full_width, 20);
    EXPECT_EQ(pixels.full_height, 10);
    EXPECT_EQ(read_png(png).width, 10u);
    EXPECT_EQ(read_png(png).height, 5u);
}

TEST(Pictures, FolderHoldsNothingButThePicture) {
    Scene scene;
    build(scene, {1, 1, 1});
    const fs::path folder = scripted::path_of("alone");
    fs::create_directory(folder);
    scene.ImagerBegin(file_imager(scene, (folder / "a.png").string()));
    scene.Render(4, 4, 1, 0, 0, 1, 1);
    scene.Render(5, 4, 1, 0, 0, 1, 1);
    scene.ImagerEnd();
    EXPECT_EQ(names_in(folder), std::vector<std::string>{"a.png"});
    EXPECT_EQ(read_png((folder / "a.png").string()).width, 5u);
    // As any new file: readable by whom the process's mask allows.
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "a.png").permissions()), 0666u & ~mask);
}

// The number of a process that has ended.
pid_t dead_process() {
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

TEST(Pictures, WhatKilledProcessesLeftIsRemoved) {
    const fs::path folder = scripted::path_of("leftovers");
    fs::create_directory(folder);
    // Killed in the middle of writing.
    const pid_t child = fork();
    if (child == 0) {
        vantor::TemporaryFile file(folder / "a.png");
        file.write("half of a picture");
        std::raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(names_in(folder).size(), 1U);
    ASSERT_TRUE(names_in(folder).front().starts_with(".vantor." + std::to_string(child) + "."));

    EXPECT_EQ(vantor::why_unwritable(folder / "b.png", 4, 4), "");
    EXPECT_EQ(names_in(folder), std::vector<std::string>{});
}

TEST(Pictures, WhatMayBeOthersStays) {
    const fs::path folder = scripted::path_of("not_leftovers");
    fs::create_directory(folder);
    const std::string dead = std::to_string(dead_process());
    std::vector<std::string> names{".vantor." + std::to_string(getppid()) + ".0",
                                   ".vantor." + dead,
                                   ".vantor." + dead + ".",
                                   ".vantor." + dead + ".1.png",
                                   ".vantor.-" + dead + ".1",
                                   ".vantor.x.1",
                                   "vantor." + dead + ".1"};
    for (const std::string &name : names)
        std::ofstream(folder / name) << "text";
    // Of a process that cannot be asked: held open in a container.
    names.push_back(".vantor." + dead + ".2");
    const int held = open((folder / names.back()).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    // What only looks like one.
    names.push_back(".vantor." + dead + ".3");
    fs::create_directory(folder / names.back());
    names.push_back(".vantor." + dead + ".4");
    fs::create_symlink("vantor." + dead + ".1", folder / names.back());

    EXPECT_EQ(vantor::why_unwritable(folder / "b.png", 4, 4), "");
    std::vector<std::string> left = names_in(folder);
    std::ranges::sort(names);
    std::ranges::sort(left);
    EXPECT_EQ(left, names);
    close(held);
    // While this process writes, others leave its file alone.
    const vantor::TemporaryFile ours(folder / "b.png");
    EXPECT_EQ(names_in(folder).size(), names.size() + 1);
    const pid_t other = fork();
    if (other == 0) {
        vantor::remove_leftovers(folder);
        _exit(0);
    }
    waitpid(other, nullptr, 0);
    EXPECT_EQ(names_in(folder).size(), names.size()); // without the one that was held
}

TEST(Pictures, ALinkStaysALink) {
    Scene scene;
    build(scene, {1, 1, 1});
    const fs::path folder = scripted::path_of("linked");
    fs::create_directory(folder);
    std::ofstream(folder / "real.png") << "old";
    fs::create_symlink("real.png", folder / "link.png");
    scene.ImagerBegin(file_imager(scene, (folder / "link.png").string()));
    scene.Render(4, 4, 1, 0, 0, 1, 1);
    scene.ImagerEnd();
    EXPECT_TRUE(fs::is_symlink(folder / "link.png"));
    EXPECT_EQ(read_png((folder / "real.png").string()).width, 4u);
}

TEST(Pictures, ALinkToNothingYetGetsItsFile) {
    Scene scene;
    build(scene, {1, 1, 1});
    const fs::path folder = scripted::path_of("dangling");
    fs::create_directories(folder / "inner");
    fs::create_symlink("inner/second.png", folder / "first.png");
    fs::create_symlink("real.png", folder / "inner" / "second.png");
    scene.ImagerBegin(file_imager(scene, (folder / "first.png").string()));
    scene.Render(4, 4, 1, 0, 0, 1, 1);
    scene.ImagerEnd();
    EXPECT_TRUE(fs::is_symlink(folder / "first.png"));
    EXPECT_TRUE(fs::is_symlink(folder / "inner" / "second.png"));
    EXPECT_EQ(read_png((folder / "inner" / "real.png").string()).width, 4u);
}

TEST(Pictures, LinksInACircleAreReported) {
    Scene scene;
    build(scene, {1, 1, 1});
    const fs::path folder = scripted::path_of("circle");
    fs::create_directory(folder);
    fs::create_symlink("b.png", folder / "a.png");
    fs::create_symlink("a.png", folder / "b.png");
    scene.ImagerBegin(file_imager(scene, (folder / "a.png").string()));
    const std::string errors = scripted::errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); });
    scene.ImagerEnd();
    EXPECT_TRUE(errors.ends_with(": Too many levels of symbolic links\n")) << errors;
    EXPECT_TRUE(fs::is_symlink(folder / "a.png"));
}

TEST(Pictures, AReplacedFileKeepsItsMode) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string path = scripted::path_of("mode.png");
    scene.ImagerBegin(file_imager(scene, path));
    for (const mode_t mode : {mode_t{0600}, mode_t{0666}, mode_t{0640}}) {
        std::ofstream(path) << "old";
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        scene.Render(4, 4, 1, 0, 0, 1, 1);
        EXPECT_EQ(read_png(path).width, 4u);
        EXPECT_EQ(static_cast<mode_t>(fs::status(path).permissions()), mode);
    }
    scene.ImagerEnd();
}

TEST(Pictures, ANameMayBeAsLongAsTheFileSystemLetsIt) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string longest = scripted::path_of(std::string(251, 'x') + ".png");
    scene.ImagerBegin(file_imager(scene, longest));
    scene.Render(4, 4, 1, 0, 0, 1, 1);
    scene.ImagerEnd();
    EXPECT_EQ(read_png(longest).width, 4u);

    // One more is refused before rendering, which would not end.
    scene.ImagerBegin(file_imager(scene, scripted::path_of(std::string(252, 'x') + ".png")));
    const std::string errors = scripted::errors_of([&] { scene.Render(4096, 4096, 1 << 24, 0, 0, 1, 1); });
    scene.ImagerEnd();
    EXPECT_TRUE(errors.ends_with(": File name too long\n")) << errors;
}

TEST(Pictures, AFileThatDoesNotFitLeavesTheOldOne) {
    for (const char *name : {"full.png", "full.exr", "full.jpg", "full.tif"}) {
        Scene scene;
        build(scene, {0.5, 0.18, 2});
        const fs::path folder = scripted::path_of(std::string(name) + ".folder");
        fs::create_directory(folder);
        const fs::path path = folder / name;
        scene.ImagerBegin(file_imager(scene, path.string()));
        const auto render = [&] { return scripted::errors_of([&] { scene.Render(400, 300, 1, 0, 0, 1, 1); }); };
        EXPECT_EQ(render(), "");
        const std::uintmax_t size = fs::file_size(path);
        std::ofstream(path, std::ios::trunc) << "old";
        std::string errors;
        {
            const FileSizeLimit limit(size - 1);
            errors = render();
        }
        EXPECT_TRUE(errors.starts_with("vantor: render: cannot write \"")) << errors;
        EXPECT_TRUE(errors.ends_with(": File too large\n")) << errors;
        EXPECT_EQ(std::ranges::count(errors, '\n'), 1);
        EXPECT_EQ(contents_of(path), "old");
        EXPECT_EQ(names_in(folder), std::vector<std::string>{name});
        {
            const FileSizeLimit limit(size);
            EXPECT_EQ(render(), "");
        }
        EXPECT_EQ(fs::file_size(path), size);
        scene.ImagerEnd();
    }
}

TEST(Pictures, UnwritablePathIsReportedBeforeRendering) {
    Scene scene;
    build(scene, {1, 1, 1});
    const fs::path folder = scripted::path_of("folder.png");
    fs::create_directory(folder);
    const std::string missing = scripted::path_of("missing");
    scene.ImagerBegin(file_imager(scene, folder.string()));
    scene.ImagerBegin(file_imager(scene, missing + "/a.png"));
    // So many samples that rendering them would not end.
    const std::string errors = scripted::errors_of([&] { scene.Render(4096, 4096, 1 << 24, 0, 0, 1, 1); });
    scene.ImagerEnd();
    scene.ImagerEnd();
    EXPECT_TRUE(errors.starts_with("vantor: render: cannot write \"")) << errors;
    EXPECT_NE(errors.find("Is a directory\n"), std::string::npos) << errors;
    EXPECT_NE(errors.find("No such file or directory\n"), std::string::npos) << errors;
    EXPECT_TRUE(fs::is_directory(folder));
}

TEST(Pictures, OneUnwritableFileDoesNotKeepTheOthersFromBeingWritten) {
    Scene scene;
    build(scene, {1, 1, 1});
    const std::string good = scripted::path_of("good.png");
    scene.ImagerBegin(file_imager(scene, scripted::path_of("missing") + "/a.png"));
    scene.ImagerBegin(file_imager(scene, good));
    scripted::errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); });
    scene.ImagerEnd();
    scene.ImagerEnd();
    EXPECT_EQ(read_png(good).width, 4u);
}

} // namespace
