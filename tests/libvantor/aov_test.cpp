// AOVs: their table, the words of scripts for them, and the frame buffer between rendering and files.
#include "libvantor/film/aov_output.h"
#include "libvantor/film/aov_table.h"
#include "libvantor/parameters/vocabulary.h"
#include "tests/libvantor/picture_readers.h"
#include "tests/libvantor/scripted_scene.h"

#include <set>

namespace {

using vantor::Aov;
using vantor::aov_names;
using vantor::AovRow;
using vantor::Color;
using vantor::FileImager;
using vantor::FrameBuffer;
using vantor::Picture;

TEST(AovTable, NamesAreThoseThatScriptsMayUse) {
    const auto types = vantor::names_of(vantor::EntityKind::Imager).types;
    const auto file = std::ranges::find(types, "file", &vantor::Type::name);
    ASSERT_NE(file, types.end());
    const auto what = std::ranges::find(file->parameters, "what", &vantor::Parameter::name);
    ASSERT_NE(what, file->parameters.end());
    EXPECT_TRUE(std::ranges::equal(what->choices, aov_names));
}

TEST(AovTable, NamesAreDifferentAndMeanTheirAov) {
    std::set<std::string_view> names;
    for (std::size_t i = 0; i < std::size(aov_names); ++i) {
        EXPECT_TRUE(names.insert(aov_names[i]).second) << aov_names[i];
        EXPECT_EQ(index_of(vantor::aov_named(aov_names[i])), i);
    }
    EXPECT_EQ(aov_names[index_of(Aov::Color)], "color");
    EXPECT_EQ(aov_names[index_of(Aov::Albedo)], "albedo");
    EXPECT_EQ(aov_names[index_of(Aov::Normal)], "normal");
    EXPECT_EQ(aov_names[index_of(Aov::Depth)], "depth");
    EXPECT_EQ(aov_names[index_of(Aov::DepthZ)], "depth_z");
    EXPECT_EQ(aov_names[index_of(Aov::Position)], "position");
    EXPECT_EQ(aov_names[index_of(Aov::ObjectId)], "object_id");
    EXPECT_EQ(aov_names[index_of(Aov::Variance)], "variance");
    EXPECT_EQ(aov_names[index_of(Aov::Alpha)], "alpha");
}

TEST(AovTable, EveryNameGivesAPictureThatIsNotBlack) {
    scripted::Scene scene;
    scene.camera({0, 0, 3}, {0, 0, 0}, 30);
    scene.light("point", "position", VtVector3(1, 2, 4), "intensity", 40.0);
    scene.light("point", "position", VtVector3(-3, 1, 2), "intensity", 10.0); // a choice, and so a variance
    scene.AddObject(scene.object("sphere"));
    for (const std::string_view name : aov_names)
        for (const char *ending : {".exr", ".png"}) {
            const std::string what(name);
            const std::string path = scripted::path_of(what + ending);
            scripted::List list("name", path, "what", what);
            scene.ImagerBegin(scene.NewImager("file", list));
        }
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(16, 16, 8, 0, 0, 1, 1); }), "");
    for (const std::string_view name : aov_names) {
        const auto pixels = scripted::read_exr(scripted::path_of(std::string(name) + ".exr"));
        EXPECT_TRUE(std::ranges::any_of(pixels.values, [](const scripted::Rgb &c) { return c[0] != 0; })) << name;
        EXPECT_FALSE(scripted::read_png(scripted::path_of(std::string(name) + ".png")).values.empty()) << name;
    }
}

TEST(AovTable, BytesKeepTheOrderOfValuesInReach) {
    for (const AovRow &row : vantor::aov_table()) {
        if (!row.in_8_bits || row.aov == Aov::ObjectId)
            continue;
        const float low = row.in_8_bits({0.25f, 0.25f, 0.25f}, 0.5f).r;
        const float high = row.in_8_bits({0.5f, 0.5f, 0.5f}, 0.5f).r;
        EXPECT_LT(low, high) << aov_names[index_of(row.aov)];
        EXPECT_GE(low, 0);
        EXPECT_LE(high, 1);
    }
}

TEST(AovTable, ObjectsHaveColorsOfTheirOwnAndNoneIsBlack) {
    const auto shown = [](float id) { return vantor::row_of(Aov::ObjectId).in_8_bits({id, id, id}, 9); };
    std::set<std::array<float, 3>> colors;
    for (int id = 1; id <= 100; ++id) {
        const Color color = shown(static_cast<float>(id));
        EXPECT_GE(std::min({color.r, color.g, color.b}), 0.25f);
        EXPECT_TRUE(colors.insert({color.r, color.g, color.b}).second) << id;
    }
    EXPECT_TRUE(is_black(shown(0)));
}

FileImager imager_of(const std::string &name, Aov aov) {
    return {scripted::path_of(name), aov, 1, vantor::Display::Linear, {}, false, false, false};
}

TEST(FrameBuffer, HoldsWhatWasAddedInTheWindow) {
    FrameBuffer frame(40, 30, {10, 5, 14, 8});
    EXPECT_EQ(frame.pixels(), 12);
    EXPECT_FALSE(frame.has(Aov::Normal));
    frame.add(Aov::Normal);
    frame.add(Aov::Color);
    frame.of(Aov::Normal).at(13, 7) = {1, 2, 3};
    frame.add(Aov::Normal); // is there: stays as it is
    EXPECT_EQ(frame.of(Aov::Normal).at(13, 7).g, 2);
    EXPECT_TRUE(is_black(frame.of(Aov::Color).at(10, 5)));
    EXPECT_FALSE(frame.has(Aov::Albedo));
    std::vector<Aov> visited;
    frame.for_each([&](Aov aov, const Picture &picture) {
        visited.push_back(aov);
        EXPECT_EQ(picture.pixels.size(), 12u);
        EXPECT_EQ(picture.full_width, 40);
    });
    EXPECT_EQ(visited, (std::vector{Aov::Color, Aov::Normal}));
}

TEST(FrameBuffer, IsWholeWhenAllPixelsAreFinished) {
    FrameBuffer frame(8, 8, {0, 0, 8, 4});
    EXPECT_FALSE(frame.is_whole());
    frame.finished = 31;
    EXPECT_FALSE(frame.is_whole());
    frame.finished = 32;
    EXPECT_TRUE(frame.is_whole());
}

// What a stage after rendering looks like: it takes a frame, reads one AOV to change another, and gives the frame back.
FrameBuffer colored_by_albedo(FrameBuffer frame) {
    const Picture &albedo = frame.of(Aov::Albedo);
    Picture &color = frame.of(Aov::Color);
    for (std::size_t i = 0; i < color.pixels.size(); ++i)
        color.pixels[i] *= albedo.pixels[i];
    return frame;
}

TEST(FrameBuffer, ImagersWriteWhatAStageGivesBack) {
    FrameBuffer frame(4, 2, {0, 0, 4, 2});
    frame.add(Aov::Color);
    frame.add(Aov::Albedo);
    for (Color &color : frame.of(Aov::Color).pixels)
        color = {2, 2, 2};
    for (Color &albedo : frame.of(Aov::Albedo).pixels)
        albedo = {0.5f, 0.25f, 1};
    const FrameBuffer before = frame;
    const FrameBuffer after = colored_by_albedo(std::move(frame));
    EXPECT_EQ(before.of(Aov::Color).at(3, 1).r, 2); // a copy is a frame of its own

    EXPECT_EQ(write_file(imager_of("stage.exr", Aov::Color), after, "a comment"), "");
    const scripted::Pixels pixels = scripted::read_exr(scripted::path_of("stage.exr"));
    ASSERT_EQ(pixels.values.size(), 8u);
    for (const scripted::Rgb &pixel : pixels.values)
        EXPECT_EQ(pixel, (scripted::Rgb{1, 0.5f, 2}));
    EXPECT_EQ(scripted::exr_comment(scripted::path_of("stage.exr")), "a comment");
}

TEST(FrameBuffer, OnlyTheColorIsExposed) {
    FrameBuffer frame(1, 1, {0, 0, 1, 1});
    for (const Aov aov : {Aov::Color, Aov::Position}) {
        frame.add(aov);
        frame.of(aov).at(0, 0) = {0.25f, 0.5f, 1};
        FileImager imager = imager_of("exposed.exr", aov);
        imager.scale = 2;
        EXPECT_EQ(write_file(imager, frame, ""), "");
        const float expected = aov == Aov::Color ? 0.5f : 0.25f;
        EXPECT_EQ(scripted::read_exr(scripted::path_of("exposed.exr")).at(0, 0)[0], expected);
    }
}

} // namespace
