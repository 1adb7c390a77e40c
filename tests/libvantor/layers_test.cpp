// Files with more than 8 bits a channel, and files with several layers: written by imagers, and read back.
#include "libvantor/images/reading.h"
#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/picture_readers.h"
#include "tests/libvantor/scripted_scene.h"

#include <ImfChannelList.h>
#include <cmath>
#include <map>

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Rgb;
using scripted::Scene;
using vantor::Raster;

constexpr int side = 24;

// A red ball under a point light, with nothing behind it.
void build(Scene &scene, double brightness = 30) {
    scene.camera({0, 0, 4}, {0, 0, 0}, 50);
    scene.light("point", "position", VtVector3(2, 3, 4), "intensity", brightness);
    scene.MaterialBegin(scene.diffuse(VtVector3(0.75, 0.25, 0.125)));
    scene.AddObject(scene.object("sphere", "radius", 1.2));
    scene.MaterialEnd();
}

template <class... Values> std::string drawn(Scene &scene, const std::string &name, const Values &...values) {
    const std::string path = scripted::path_of(name);
    List list("name", path, values...);
    scene.ImagerBegin(scene.NewImager("file", list));
    scene.Render(side, side, 4, 0, 0, 1, 1);
    scene.ImagerEnd();
    return path;
}

Raster read(const std::string &path, const std::string &layer = {}) {
    vantor::ReadPicture read = vantor::read_picture(path, layer);
    EXPECT_EQ(read.why_not, "") << path << " " << layer;
    return read.raster ? *read.raster : Raster(side, side, vantor::PixelFormat{});
}

std::map<std::string, Imf::PixelType> channels_of(const std::string &path) {
    const Imf::InputFile file(path.c_str(), 0);
    std::map<std::string, Imf::PixelType> result;
    const Imf::ChannelList &channels = file.header().channels();
    for (auto channel = channels.begin(); channel != channels.end(); ++channel)
        result[channel.name()] = channel.channel().type;
    return result;
}

TEST(Bits, APngOf16HasTheColoursToASixteenth) {
    Scene scene;
    build(scene);
    const Pixels exact = scripted::read_exr(drawn(scene, "exact.exr", "background", 0));
    const Raster words = read(drawn(scene, "deep.png", "bits", 16, "background", 0));
    const Raster bytes = read(drawn(scene, "flat.png", "bits", 8, "background", 0));
    EXPECT_EQ(words.format().type, vantor::SampleType::Word);
    EXPECT_EQ(bytes.format().type, vantor::SampleType::Byte);
    // The steps of the sRGB curve, in linear values, are at most 2.5 / 65535 and half of that is rounding.
    bool is_finer = false;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const float alpha = words.alpha_at(x, y);
            if (alpha == 1 && exact.at(x, y)[0] < 1) {
                EXPECT_NEAR(words.at(x, y).r, exact.at(x, y)[0], 2e-5) << x << " " << y;
                EXPECT_NEAR(words.at(x, y).b, exact.at(x, y)[2], 2e-5) << x << " " << y;
                is_finer |= std::fabs(bytes.at(x, y).r - exact.at(x, y)[0]) > 2e-4f;
            }
            EXPECT_NEAR(alpha, bytes.alpha_at(x, y), 0.5 / 255 + 1e-5);
        }
    EXPECT_TRUE(is_finer);
    // With the same bytes as without the parameter.
    EXPECT_EQ(scripted::contents_of(drawn(scene, "flat.png", "bits", 8)),
              scripted::contents_of(drawn(scene, "plain.png")));
}

TEST(Bits, NumbersInAPngOf16AreShownAsIn8) {
    Scene scene;
    build(scene);
    const Raster words = read(drawn(scene, "depth.png", "what", "depth_z", "bits", 16));
    const Raster bytes = read(drawn(scene, "depth8.png", "what", "depth_z"));
    EXPECT_EQ(words.format().type, vantor::SampleType::Word);
    for (int i = 0; i < side; ++i)
        EXPECT_NEAR(vantor::srgb_of_linear(words.at(i, 12).r), vantor::srgb_of_linear(bytes.at(i, 12).r), 0.6 / 255);
}

TEST(Bits, AnExrOf16HasHalves) {
    Scene scene;
    build(scene);
    const Pixels exact = scripted::read_exr(drawn(scene, "exact.exr", "background", 0));
    const std::string path = drawn(scene, "half.exr", "bits", 16, "background", 0);
    for (const auto &[name, type] : channels_of(path))
        EXPECT_EQ(type, Imf::HALF) << name;
    EXPECT_EQ(channels_of(path).size(), 4u);
    const Pixels halves = scripted::read_exr(path);
    for (std::size_t i = 0; i < exact.values.size(); ++i)
        EXPECT_NEAR(halves.values[i][0], exact.values[i][0], exact.values[i][0] / 2048 + 1e-7);
    EXPECT_EQ(read(path).format().type, vantor::SampleType::Half);
    EXPECT_EQ(scripted::contents_of(drawn(scene, "float.exr", "bits", 32)),
              scripted::contents_of(drawn(scene, "plain.exr")));
}

TEST(Bits, HalvesStayFinite) {
    Scene scene;
    build(scene, 1e9);
    const Pixels halves = scripted::read_exr(drawn(scene, "bright.exr", "bits", 16));
    EXPECT_EQ(halves.at(12, 12)[0], 65504);
}

TEST(Bits, WhatAFormatDoesNotHaveIsReported) {
    Scene scene;
    const auto errors_of = [&](const char *name, const auto &...values) {
        return scripted::errors_of([&] {
            List list("name", name, values...);
            scene.NewImager("file", list);
        });
    };
    const DiagnosticLine bits{.call = "newImager", .type = "file", .item = 3, .parameter = "bits"};
    for (const int wrong : {9, 32})
        expect_diagnostics(errors_of("a.png", "bits", wrong), {bits});
    expect_diagnostics(errors_of("a.exr", "bits", 8), {bits});
    expect_diagnostics(errors_of("a.jpg", "bits", 16), {bits});
    expect_diagnostics(errors_of("a.tif", "bits", 64), {bits});
    expect_diagnostics(errors_of("a.exr", "bits", 16, "what", "object_id"), {bits});
    EXPECT_EQ(errors_of("a.jpg", "bits", 8), "");
}

TEST(Layers, HoldWhatFilesOfTheirOwnWould) {
    Scene scene;
    build(scene);
    const std::string path = drawn(scene, "layers.exr", "layers",
                                   "albedo, normal depth depth_z position\nobject_id "
                                   "variance alpha");
    const auto channels = channels_of(path);
    for (const char *name : {"R", "G", "B", "albedo.R", "albedo.G", "albedo.B", "normal.X", "normal.Y", "normal.Z",
                             "depth.Z", "depth_z.Z", "position.Y", "object_id.id", "variance.R", "alpha.A"})
        EXPECT_EQ(channels.count(name), 1u) << name;
    EXPECT_EQ(channels.size(), 3 + 3 * 4 + 4u);
    EXPECT_EQ(scripted::read_exr(path).values, scripted::read_exr(drawn(scene, "plain.exr")).values);
    EXPECT_EQ(vantor::layer_names(path), (std::vector<std::string>{"albedo", "alpha", "depth", "depth_z", "normal",
                                                                   "object_id", "position", "variance"}));
    for (const std::string &layer : vantor::layer_names(path)) {
        const Raster found = read(path, layer);
        const Pixels alone = scripted::read_exr(drawn(scene, "alone.exr", "what", layer.c_str()));
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const vantor::Color c = found.at(x, y);
                EXPECT_EQ((Rgb{c.r, c.g, c.b}), alone.at(x, y)) << layer << " " << x << " " << y;
            }
    }
}

TEST(Layers, AreOfHalvesButForIds) {
    Scene scene;
    build(scene);
    const std::string path = drawn(scene, "half.exr", "what", "normal", "layers", "color object_id", "bits", 16);
    for (const auto &[name, type] : channels_of(path))
        EXPECT_EQ(type, name == "object_id.id" ? Imf::FLOAT : Imf::HALF) << name;
    EXPECT_EQ(channels_of(path).count("color.R"), 1u);
}

// A window, whose layers have its place, without a background, exposed.
TEST(Layers, GoWithAWindowAndAnAlpha) {
    Scene scene;
    build(scene);
    const std::string path = scripted::path_of("window.exr");
    List list("name", path, "layers", "color depth", "background", 0, "exposure", 1.0);
    scene.ImagerBegin(scene.NewImager("file", list));
    scene.Render(side, side, 4, 0.25, 0.5, 0.75, 1);
    scene.ImagerEnd();
    const Pixels whole = scripted::read_exr(drawn(scene, "depth.exr", "what", "depth"));
    const Raster depth = read(path, "depth");
    const Raster color = read(path);
    const Raster beside = read(path, "color");
    EXPECT_TRUE(color.format().has_alpha);
    for (int y = side / 2; y < side; ++y)
        for (int x = side / 4; x < 3 * side / 4; ++x) {
            EXPECT_EQ(depth.at(x, y).g, whole.at(x, y)[1]);
            // What is exposed is the picture, not what is beside it.
            EXPECT_EQ(color.at(x, y).g, 2 * beside.at(x, y).g);
        }
    EXPECT_EQ(depth.at(0, 0).g, 0);
}

TEST(Layers, OfPartsAreOfTheirSamples) {
    Scene scene;
    build(scene);
    List settings("first_sample", 0, "samples_in_all", 32);
    scene.ImagerBegin(scene.NewImager("settings", settings));
    const std::string path = scripted::path_of("part.exr");
    List list("name", path, "layers", "depth");
    scene.ImagerBegin(scene.NewImager("file", list));
    const std::string said = scripted::errors_of([&] { scene.Render(side, side, 16, 0, 0, 1, 1); });
    EXPECT_NE(said.find("without the sums"), std::string::npos) << said;
    EXPECT_EQ(vantor::layer_names(path), std::vector<std::string>{"depth"});
    EXPECT_TRUE(vantor::read_part(path).picture.has_value());
}

TEST(Layers, MistakesAreReported) {
    Scene scene;
    const auto errors_of = [&](const char *name, const auto &...values) {
        return scripted::errors_of([&] {
            List list("name", name, values...);
            scene.NewImager("file", list);
        });
    };
    DiagnosticLine layers{.call = "newImager", .type = "file", .item = 3, .parameter = "layers"};
    expect_diagnostics(errors_of("a.png", "layers", "depth"), {layers});
    expect_diagnostics(errors_of("a.exr", "layers", "color"), {layers});
    expect_diagnostics(errors_of("a.exr", "layers", "depth depth"), {layers});
    layers.suggestion = "normal";
    expect_diagnostics(errors_of("a.exr", "layers", "depth normals"), {layers});
    EXPECT_EQ(errors_of("a.exr", "layers", ""), "");
}

TEST(Layers, ThatAreNotThereAreNotRead) {
    Scene scene;
    build(scene);
    const std::string path = drawn(scene, "plain.exr");
    EXPECT_EQ(vantor::read_picture(path, "depth").why_not, "the file has no layer \"depth\" that is a picture");
    const std::string png = drawn(scene, "plain.png");
    EXPECT_EQ(vantor::read_picture(png, "depth").why_not, "only OpenEXR files have layers");
    EXPECT_TRUE(vantor::layer_names(png).empty());
    EXPECT_TRUE(vantor::layer_names(scripted::path_of("nowhere.exr")).empty());
}

} // namespace
