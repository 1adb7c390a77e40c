// Picture files: what they hold, and that they are written whole or not at all.
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/base/color.h"

#include <fstream>
#include <png.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
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

struct Png {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<unsigned char> bytes;
};

Png read_png(const std::string &path) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return {};
    image.format = PNG_FORMAT_RGB;
    Png result{image.width, image.height, std::vector<unsigned char>(PNG_IMAGE_SIZE(image))};
    png_image_finish_read(&image, nullptr, result.bytes.data(), 0, nullptr);
    return result;
}

TEST(Pictures, SrgbCurveHasItsKnownValues) {
    EXPECT_EQ(vantor::srgb_byte(0), 0);
    EXPECT_EQ(vantor::srgb_byte(1), 255);
    EXPECT_EQ(vantor::srgb_byte(0.5f), 188);
    EXPECT_EQ(vantor::srgb_byte(0.18f), 118);
    EXPECT_EQ(vantor::srgb_byte(0.002f), 7);
    EXPECT_EQ(vantor::srgb_byte(-3), 0);
    EXPECT_EQ(vantor::srgb_byte(1e30f), 255);
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

    const Png bytes = read_png(png);
    EXPECT_EQ(bytes.width, 10u);
    EXPECT_EQ(bytes.height, 6u);
    ASSERT_EQ(bytes.bytes.size(), 180u);
    EXPECT_EQ(bytes.bytes[90], 188);
    EXPECT_EQ(bytes.bytes[91], 118);
    EXPECT_EQ(bytes.bytes[92], 255);
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
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{"a.png"});
    EXPECT_EQ(read_png((folder / "a.png").string()).width, 5u);
    // As any new file: readable by whom the process's mask allows.
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder / "a.png").permissions()), 0666u & ~mask);
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
