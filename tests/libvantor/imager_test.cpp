// Imagers: what their pictures show, and how settings change a pass.
#include "tests/libvantor/diagnostic_lines.h"
#include "tests/libvantor/picture_readers.h"
#include "tests/libvantor/scripted_scene.h"

#include "libvantor/base/color.h"
#include "libvantor/base/random.h"

#include <ImfChannelList.h>
#include <cmath>
#include <cstring>
#include <numbers>
#include <tbb/global_control.h>

namespace {

using scripted::Pixels;
using scripted::Rgb;
using scripted::Scene;

template <class... Values> VtLong imager(Scene &scene, const std::string &name, const Values &...values) {
    const std::string path = scripted::path_of(name);
    scripted::List list("name", path, values...);
    return scene.NewImager("file", list);
}

template <class... Values> VtLong settings(Scene &scene, const Values &...values) {
    scripted::List list(values...);
    return scene.NewImager("settings", list);
}

constexpr int side = 32;

// A red sphere of radius 1 around (0.5, 0, 0), seen from (0, 0, 4); returns its id.
VtLong build_sphere(Scene &scene) {
    scene.camera({0, 0, 4}, {0, 0, 0}, 50);
    scene.light("point", "position", VtVector3(0, 0, 4), "intensity", 20.0);
    scene.MaterialBegin(scene.diffuse(VtVector3(0.75, 0.25, 0.125)));
    const VtLong sphere = scene.object("sphere", "center", VtVector3(0.5, 0, 0), "radius", 1.0);
    scene.AddObject(sphere);
    scene.MaterialEnd();
    return sphere;
}

struct Seen {
    bool is_hit;
    double depth;
    std::array<double, 3> point;
    std::array<double, 3> normal;
};

// What the ray through a point of the picture meets.
Seen sphere_at(double x, double y) {
    const double scale = std::tan(25 * std::numbers::pi / 180) / (0.5 * side);
    std::array<double, 3> d{(x - 0.5 * side) * scale, (0.5 * side - y) * scale, -1};
    const double length = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    for (double &c : d)
        c /= length;
    const double b = -0.5 * d[0] + 4 * d[2]; // (origin - centre) . d
    const double square = b * b - (0.25 + 16 - 1);
    if (square < 0)
        return {};
    const double t = -b - std::sqrt(square);
    const std::array<double, 3> p{t * d[0], t * d[1], 4 + t * d[2]};
    return {true, t, p, {p[0] - 0.5, p[1], p[2]}};
}

// With a filter so narrow that all samples of a pixel lie in its middle.
VtLong narrow_imager(Scene &scene, const std::string &name, const char *what) {
    return imager(scene, name, "what", what, "filter", "box", "filter_width", 0.01);
}

TEST(Imager, AovsOfASphereAreItsGeometry) {
    Scene scene;
    const VtLong sphere = build_sphere(scene);
    const char *whats[] = {"albedo", "normal", "depth", "position", "object_id", "color"};
    for (const char *what : whats)
        scene.ImagerBegin(narrow_imager(scene, std::string(what) + ".exr", what));
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(side, side, 4, 0, 0, 1, 1); }), "");
    const auto read = [](const char *what) {
        return scripted::read_exr(scripted::path_of(std::string(what) + ".exr"));
    };
    const Pixels albedo = read("albedo");
    const Pixels normal = read("normal");
    const Pixels depth = read("depth");
    const Pixels position = read("position");
    const Pixels object = read("object_id");
    int hits = 0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const Seen seen = sphere_at(x + 0.5, y + 0.5);
            if (!seen.is_hit) {
                for (const Pixels *pixels : {&albedo, &normal, &depth, &position, &object})
                    EXPECT_EQ(pixels->at(x, y), Rgb{});
                continue;
            }
            // At grazing angles a hundredth of a pixel moves the point far.
            if (seen.normal[2] < 0.3)
                continue;
            ++hits;
            EXPECT_EQ(albedo.at(x, y), (Rgb{0.75f, 0.25f, 0.125f}));
            EXPECT_NEAR(depth.at(x, y)[0], seen.depth, 2e-3);
            EXPECT_EQ(depth.at(x, y)[0], depth.at(x, y)[2]);
            EXPECT_EQ(object.at(x, y)[0], static_cast<float>(sphere));
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_NEAR(position.at(x, y)[i], seen.point[i], 2e-3);
                EXPECT_NEAR(normal.at(x, y)[i], seen.normal[i], 2e-3);
            }
        }
    EXPECT_GT(hits, 100);
}

TEST(Imager, AovsInBytesCanBeLookedAt) {
    Scene scene;
    const VtLong sphere = build_sphere(scene);
    const char *whats[] = {"albedo", "normal", "depth", "position", "object_id", "variance"};
    for (const char *what : whats)
        scene.ImagerBegin(narrow_imager(scene, std::string(what) + ".png", what));
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(side, side, 4, 0, 0, 1, 1); }), "");
    const auto read = [](const char *what) {
        return scripted::read_png(scripted::path_of(std::string(what) + ".png"));
    };
    // The pixel whose middle is nearest to the sphere's, and one beside the sphere.
    const unsigned x = 20;
    const unsigned y = 16;
    const Seen seen = sphere_at(x + 0.5, y + 0.5);
    ASSERT_TRUE(seen.is_hit);
    EXPECT_EQ(read("albedo").at(x, y, 0), vantor::srgb_byte(0.75f));
    const scripted::Bytes depth = read("depth");
    int deepest = 0;
    for (unsigned i = 0; i < side * side; ++i)
        deepest = std::max(deepest, depth.at(i % side, i / side, 0));
    EXPECT_EQ(deepest, 255);
    EXPECT_EQ(depth.at(0, 0, 0), 0);
    for (unsigned i = 0; i < 3; ++i) {
        EXPECT_NEAR(read("normal").at(x, y, i), 255 * (0.5 + 0.5 * seen.normal[i]), 1);
        EXPECT_NEAR(read("position").at(x, y, i), 255 * std::clamp(seen.point[i], 0.0, 1.0), 1);
        EXPECT_EQ(read("variance").at(0, 0, i), 0);
        EXPECT_EQ(read("object_id").at(0, 0, i), 0);
    }
    const unsigned mixed = vantor::sobol::hash(static_cast<unsigned>(sphere));
    EXPECT_NEAR(read("object_id").at(x, y, 0), 255 * (0.25 + 0.75 * (mixed & 255) / 255), 1);
}

TEST(Imager, NormalsFaceTheCamera) {
    Scene scene;
    scene.camera({0.3, 0.2, 0}, {1, 0, 0}, 60);
    // From inside, where the front looks away.
    scene.AddObject(scene.object("sphere", "radius", 2.0));
    imager(scene, "inside.exr", "what", "normal");
    scene.Render(8, 8, 1, 0, 0, 1, 1);
    const Pixels normals = scripted::read_exr(scripted::path_of("inside.exr"));
    for (const Rgb &n : normals.values) {
        EXPECT_LT(n[0], 0);
        EXPECT_NEAR(n[0] * n[0] + n[1] * n[1] + n[2] * n[2], 1, 1e-5);
    }
}

// The normal of a plate with a slope of 0.5 in its bumps, seen from 2 in front of it. The slope is no wider than the
// plate, and level beyond it.
Rgb normal_of_a_slope(const VtVector3 &middle, double half_width) {
    Scene scene;
    scene.camera({middle[0], middle[1], middle[2] + 2}, middle, 0.01);
    scripted::Points heights;
    scripted::fill(heights, {{0, 0, 0}, {1, 1, 1}});
    scripted::List ramp("colors", heights);
    scripted::List diffuse;
    scripted::List bumps("interface", scene.NewInterface("diffuse", diffuse), "bump",
                         scene.NewPattern("gradient", ramp), "bump_height", half_width);
    scene.MaterialBegin(scene.NewMaterial("surface", bumps));
    scene.AddObject(scene.object("quad", "origin", VtVector3(middle[0] - half_width, middle[1] - half_width, middle[2]),
                                 "edge_u", VtVector3(2 * half_width, 0, 0), "edge_v", VtVector3(0, 2 * half_width, 0)));
    scene.MaterialEnd();
    imager(scene, "slope.exr", "what", "normal");
    scene.Render(1, 1, 1, 0, 0, 1, 1);
    return scripted::read_exr(scripted::path_of("slope.exr")).at(0, 0);
}

TEST(Imager, NormalsFollowBumps) {
    const double length = std::sqrt(1.25);
    for (const double x : {0.0, 1000.0}) { // also far from the origin, where there are coarser numbers
        const Rgb normal = normal_of_a_slope({x, 0, 0}, 0.02);
        EXPECT_NEAR(normal[0], -0.5 / length, 0.01) << x;
        EXPECT_NEAR(normal[1], 0, 0.01) << x;
        EXPECT_NEAR(normal[2], 1 / length, 0.01) << x;
    }
}

// A room lit indirectly: every picture of it has noise.
void build_room(Scene &scene) {
    scene.camera({0.1, 0.2, -0.9}, {0, 0, 1}, 70);
    scene.light("area", "radiance", 3.0);
    scene.AddObject(scene.room());
    scene.AddObject(scene.object("sphere", "center", VtVector3(0.4, -0.5, 0.3), "radius", 0.4));
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-0.3, 0.99, -0.3), "edge_u", VtVector3(0.6, 0, 0),
                                 "edge_v", VtVector3(0, 0, 0.6)));
    scene.LightEnd();
}

// A picture with settings, of what it may be.
template <class... Values> Pixels render_with(Scene &scene, int samples, const Values &...values) {
    scene.ImagerBegin(settings(scene, values...));
    const Pixels pixels = scene.render(16, 16, samples);
    scene.ImagerEnd();
    return pixels;
}

TEST(Imager, VarianceIsTheSpreadOfPicturesWithOtherSeeds) {
    Scene scene;
    build_room(scene);
    constexpr int pictures = 24;
    constexpr int samples = 2;
    std::vector<Pixels> all;
    double told = 0;
    for (int seed = 0; seed < pictures; ++seed) {
        scene.ImagerBegin(settings(scene, "seed", seed));
        scene.ImagerBegin(imager(scene, "variance.exr", "what", "variance"));
        all.push_back(scene.render(16, 16, samples));
        scene.ImagerEnd();
        scene.ImagerEnd();
        told += scripted::read_exr(scripted::path_of("variance.exr")).mean() / pictures;
    }
    double spread = 0;
    for (std::size_t i = 0; i < all[0].values.size(); ++i) {
        double sum = 0;
        double squares = 0;
        for (const Pixels &pixels : all) {
            const double value = pixels.values[i][1];
            sum += value;
            squares += value * value;
        }
        spread += (squares - sum * sum / pictures) / (pictures - 1);
    }
    spread /= static_cast<double>(all[0].values.size());
    // The samples of a pixel are stratified, so the picture is a little better than it says; never worse. The means
    // are over 6144 values each.
    EXPECT_LT(spread, 1.1 * told);
    EXPECT_GT(spread, 0.3 * told);
}

TEST(Imager, EverySeedHasItsOwnNoiseAndTheSameMean) {
    Scene scene;
    build_room(scene);
    const Pixels plain = scene.render(16, 16, 64);
    EXPECT_EQ(render_with(scene, 64, "seed", 0).values, plain.values);
    const Pixels one = render_with(scene, 64, "seed", 1);
    const Pixels largest = render_with(scene, 64, "seed", 2147483647);
    EXPECT_EQ(render_with(scene, 64, "seed", 1).values, one.values);
    EXPECT_NE(one.values, plain.values);
    EXPECT_NE(largest.values, one.values);
    // Noise of a pixel is some 5 %; of the mean of 256 a sixteenth of it.
    EXPECT_NEAR(one.mean(), plain.mean(), 0.015 * plain.mean());
    EXPECT_NEAR(largest.mean(), plain.mean(), 0.015 * plain.mean());
}

TEST(Imager, MaxDepthSaysHowOftenLightIsScattered) {
    // In a room that shines 1 and reflects half, every scattering adds half of what the one before did.
    Scene scene;
    scene.camera({0, 0, 0.3}, {0, 0, 0}, 60);
    scene.light("area", "radiance", 1.0);
    scene.LightBegin();
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.room());
    scene.MaterialEnd();
    scene.LightEnd();
    double expected = 1;
    double part = 1;
    for (const int depth : {1, 2, 3, 4, 5}) {
        part *= 0.5;
        expected += part;
        // A standard error of about 0.003.
        EXPECT_NEAR(render_with(scene, 64, "max_depth", depth).mean(), expected, 0.015) << depth;
    }
    EXPECT_NEAR(render_with(scene, 64).mean(), 2, 0.015);
}

TEST(Imager, ClampLimitsIndirectLightOnly) {
    Scene scene;
    build_room(scene);
    const Pixels direct = render_with(scene, 16, "max_depth", 1);
    const Pixels whole = render_with(scene, 16);
    EXPECT_EQ(render_with(scene, 16, "clamp", 0.0).values, whole.values);
    EXPECT_EQ(render_with(scene, 16, "clamp", 1e9).values, whole.values);
    const Pixels clamped = render_with(scene, 16, "clamp", 1e-4);
    // So low a limit leaves hardly more than the direct light, of which nothing is lost.
    for (std::size_t i = 0; i < direct.values.size(); ++i)
        EXPECT_GE(clamped.values[i][1], 0.9999f * direct.values[i][1]);
    EXPECT_GT(clamped.mean(), direct.mean());
    EXPECT_LT(clamped.mean(), direct.mean() + 0.1 * (whole.mean() - direct.mean()));
}

TEST(Imager, ClampLimitsTheLightOfTheSkyToo) {
    // Of a white floor under a white sky only what bounced off the ball first is indirect.
    Scene scene;
    scene.camera({0, 3, 3}, {0, 0, 0}, 50);
    scene.light("environment");
    scene.AddObject(scene.object("quad", "origin", VtVector3(-2, 0, 2), "edge_u", VtVector3(4, 0, 0), "edge_v",
                                 VtVector3(0, 0, -4)));
    scene.AddObject(scene.object("sphere", "center", VtVector3(0, 0.5, 0), "radius", 0.5));
    const Pixels direct = render_with(scene, 16, "max_depth", 1);
    const Pixels whole = render_with(scene, 16);
    const Pixels clamped = render_with(scene, 16, "clamp", 1e-4);
    EXPECT_GT(whole.mean(), 1.01 * direct.mean());
    EXPECT_GT(clamped.mean(), direct.mean());
    EXPECT_LT(clamped.mean(), direct.mean() + 0.1 * (whole.mean() - direct.mean()));
}

TEST(Imager, TheInnermostOpenSettingsCountElseThoseMadeLast) {
    Scene scene;
    build_room(scene);
    const Pixels plain = scene.render(8, 8, 4);
    const VtLong five = settings(scene, "seed", 5);
    const Pixels last = scene.render(8, 8, 4);
    EXPECT_NE(last.values, plain.values);
    const VtLong none = settings(scene, "seed", 0);
    EXPECT_EQ(scene.render(8, 8, 4).values, plain.values);
    scene.ImagerBegin(none);
    scene.ImagerBegin(five);
    EXPECT_EQ(scene.render(8, 8, 4).values, last.values);
    scene.ImagerEnd();
    EXPECT_EQ(scene.render(8, 8, 4).values, plain.values);
    scene.ImagerEnd();
}

TEST(Imager, SettingsWriteNothingAndKeepNoFileFromBeingWritten) {
    Scene scene;
    build_room(scene);
    const VtLong some = settings(scene, "seed", 5);
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); }),
              "vantor: render: there is no usable imager, so nothing would be written (newImager makes one); nothing "
              "is rendered\n");
    imager(scene, "last.png");
    scene.ImagerBegin(some);
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(4, 4, 1, 0, 0, 1, 1); }), "");
    scene.ImagerEnd();
    EXPECT_EQ(scripted::read_png(scripted::path_of("last.png")).width, 4u);
}

TEST(Imager, FilesOfOnePassShareTheFilterOfTheInnermost) {
    Scene scene;
    build_sphere(scene);
    const VtLong tent = imager(scene, "tent.exr");
    const VtLong box = imager(scene, "box.exr", "filter", "box");
    const VtLong same = imager(scene, "same.exr", "filter", "tent", "filter_width", 2);
    const auto render = [&](VtLong outer, VtLong inner) {
        scene.ImagerBegin(outer);
        scene.ImagerBegin(inner);
        const std::string errors = scripted::errors_of([&] { scene.Render(16, 16, 4, 0, 0, 1, 1); });
        scene.ImagerEnd();
        scene.ImagerEnd();
        return errors;
    };
    const auto read = [](const char *name) { return scripted::read_exr(scripted::path_of(name)).values; };
    EXPECT_EQ(render(same, tent), "");
    const auto with_tent = read("tent.exr");
    EXPECT_EQ(read("same.exr"), with_tent);
    EXPECT_EQ(render(tent, box), ""); // the outer one asks for nothing
    EXPECT_EQ(read("tent.exr"), read("box.exr"));
    EXPECT_NE(read("box.exr"), with_tent);
    EXPECT_EQ(render(box, tent), "vantor: render: \"" + scripted::path_of("box.exr") +
                                     "\" asks for another filter than \"" + scripted::path_of("tent.exr") +
                                     "\", whose filter counts (all files of one pass share the innermost one's)\n");
    EXPECT_EQ(read("box.exr"), with_tent);
}

TEST(Imager, TheInnerOfTwoWithOneFileCounts) {
    Scene scene;
    build_sphere(scene);
    scene.ImagerBegin(narrow_imager(scene, "twice.exr", "depth"));
    scene.ImagerBegin(narrow_imager(scene, "twice.exr", "object_id"));
    EXPECT_EQ(scripted::errors_of([&] { scene.Render(side, side, 1, 0, 0, 1, 1); }),
              "vantor: render: \"" + scripted::path_of("twice.exr") +
                  "\" is the file of two imagers (the inner one's picture counts)\n");
    const Rgb middle = scripted::read_exr(scripted::path_of("twice.exr")).at(side / 2, side / 2);
    EXPECT_EQ(middle[0], std::round(middle[0]));
    EXPECT_GT(middle[0], 0);
}

TEST(Imager, FilterWidthsBlurAnEdgeSoFar) {
    // The left half shines: in the column of an edge's distance d, the light is the filter's share beyond d.
    Scene scene;
    scene.camera({0, 0, 4}, {0, 0, 0}, 50);
    scene.light("area", "radiance", 1.0);
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-9, -9, 0), "edge_u", VtVector3(9, 0, 0), "edge_v",
                                 VtVector3(0, 18, 0)));
    scene.LightEnd();
    const auto row = [&](const char *filter, double width) {
        scene.ImagerBegin(imager(scene, "edge.exr", "filter", filter, "filter_width", width));
        scene.Render(32, 8, 256, 0, 0, 1, 1);
        scene.ImagerEnd();
        std::vector<double> means(32);
        const Pixels pixels = scripted::read_exr(scripted::path_of("edge.exr"));
        for (int x = 0; x < 32; ++x)
            for (int y = 0; y < 8; ++y)
                means[static_cast<std::size_t>(x)] += pixels.at(x, y)[1] / 8;
        return means;
    };
    // The edge lies at x = 16. 2048 stratified samples a column: errors below 0.005.
    const std::vector<double> box = row("box", 4);
    EXPECT_NEAR(box[13], 1, 1e-6);
    EXPECT_NEAR(box[14], 0.875, 0.01);
    EXPECT_NEAR(box[15], 0.625, 0.01);
    EXPECT_NEAR(box[17], 0.125, 0.01);
    EXPECT_NEAR(box[18], 0, 1e-6);
    const std::vector<double> tent = row("tent", 4);
    EXPECT_NEAR(tent[15], 1 - 0.5 * 0.75 * 0.75, 0.01);
    const std::vector<double> gaussian = row("gaussian", 6);
    EXPECT_NEAR(gaussian[16], 0.5 * std::erfc(0.5 / std::sqrt(2.0)), 0.01);
    const std::vector<double> narrow = row("blackman_harris", 2);
    EXPECT_NEAR(narrow[14], 1, 1e-6);
    EXPECT_GT(narrow[16], 0);
    EXPECT_LT(narrow[16], 0.1);
}

TEST(Imager, WindowsAndThreadsMakeNoDifferenceToAovsUnderAFilter) {
    Scene scene;
    build_room(scene);
    const char *whats[] = {"color", "albedo", "normal", "depth", "position", "object_id", "variance"};
    const auto render = [&](double x0, double y0, double x1, double y1) {
        for (const char *what : whats)
            scene.ImagerBegin(imager(scene, std::string("same_") + what + ".exr", "what", what, "filter", "gaussian"));
        scene.Render(37, 29, 5, x0, y0, x1, y1);
        std::vector<Pixels> result;
        for (const char *what : whats) {
            scene.ImagerEnd();
            result.push_back(scripted::read_exr(scripted::path_of(std::string("same_") + what + ".exr")));
        }
        return result;
    };
    const std::vector<Pixels> whole = render(0, 0, 1, 1);
    const std::vector<Pixels> part = render(0.3, 0.4, 0.75, 0.95);
    const tbb::global_control one_thread(tbb::global_control::max_allowed_parallelism, 1);
    const std::vector<Pixels> single = render(0, 0, 1, 1);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(single[i].values, whole[i].values) << whats[i];
        for (int y = part[i].y0; y < part[i].y0 + part[i].height; ++y)
            EXPECT_EQ(std::memcmp(&part[i].at(part[i].x0, y), &whole[i].at(part[i].x0, y),
                                  static_cast<std::size_t>(part[i].width) * sizeof(Rgb)),
                      0)
                << whats[i] << ", row " << y;
    }
}

TEST(Imager, WhatIsAskedForBesidesChangesNoBitOfTheColour) {
    Scene scene;
    build_room(scene);
    const Pixels alone = scene.render(16, 16, 4);
    scene.ImagerBegin(imager(scene, "besides.exr", "what", "normal"));
    const Pixels together = scene.render(16, 16, 4);
    scene.ImagerEnd();
    EXPECT_EQ(alone.values, together.values);
}

TEST(Imager, ExposureAndDisplayAreForTheColour) {
    Scene scene;
    EXPECT_EQ(scripted::errors_of([&] { imager(scene, "a.png", "what", "depth", "exposure", 1.0); }),
              "vantor: newImager \"file\": item 5: parameter \"exposure\" has an effect on \"color\" only\n");
    EXPECT_EQ(scripted::errors_of([&] { imager(scene, "a.png", "what", "normal", "display", "filmic"); }),
              "vantor: newImager \"file\": item 5: parameter \"display\" has an effect on \"color\" only\n");
    EXPECT_EQ(scripted::errors_of([&] { imager(scene, "a.png", "what", "colour"); }),
              "vantor: newImager \"file\": item 3: parameter \"what\": unknown word \"colour\" (did you "
              "mean \"color\"?)\n");
    EXPECT_EQ(
        scripted::errors_of([&] { settings(scene, "max_depth", 0); }),
        "vantor: newImager \"settings\": item 1: parameter \"max_depth\" is out of range: expected 1 to 1000, got 0\n");
    EXPECT_EQ(scripted::errors_of([&] { settings(scene, "seed", -1); }),
              "vantor: newImager \"settings\": item 1: parameter \"seed\" is out of range: expected 0 to 2147483647, "
              "got -1\n");
}

// A wall across the axis, seen by a camera that stands askew of the world's axes, with and without a lens.
TEST(DepthZ, IsThatOfTheCamera) {
    const auto depth = [](const char *what, auto... camera) {
        Scene scene;
        scripted::List list("position", VtVector3(3, 0, 4), "target", VtVector3(0, 0, 0), camera...);
        scene.NewCamera("perspective", list);
        // Through the origin, 5 away: its edges are (4, 0, -3) / 5 and +Y.
        scene.AddObject(scene.object("quad", "origin", VtVector3(-16, -20, 12), "edge_u", VtVector3(32, 0, -24),
                                     "edge_v", VtVector3(0, 40, 0)));
        scene.ImagerBegin(imager(scene, "depth.exr", "what", what));
        scene.Render(8, 8, 16, 0, 0, 1, 1);
        scene.ImagerEnd();
        return scripted::read_exr(scripted::path_of("depth.exr"));
    };
    for (const float z : {depth("depth_z", "fov", 60.0).at(0, 0)[0], depth("depth_z", "fov", 60.0).at(4, 4)[0],
                          depth("depth_z", "aperture_radius", 0.5).at(1, 6)[0]})
        EXPECT_NEAR(z, 5, 1e-5);
    // Along the rays the corner is farther away.
    EXPECT_GT(depth("depth", "fov", 60.0).at(0, 0)[0], 5.5);
}

// A quad over the left half of the picture, before an environment.
TEST(Alpha, TellsWhatSurfacesCover) {
    Scene scene;
    scene.camera({0, 0, 1}, {0, 0, 0}, 90);
    scene.light("environment", "radiance", 2.0);
    scene.AddObject(scene.object("quad", "origin", VtVector3(-9, -9, 0), "edge_u", VtVector3(9, 0, 0), "edge_v",
                                 VtVector3(0, 18, 0)));
    const auto drawn = [&](const char *name, const auto &...values) {
        const std::string path = scripted::path_of(name);
        scripted::List list("name", path, "filter", "box", values...);
        scene.ImagerBegin(scene.NewImager("file", list));
        scene.Render(4, 2, 16, 0, 0, 1, 1);
        scene.ImagerEnd();
        return path;
    };
    const scripted::Pixels alpha = scripted::read_exr(drawn("alpha.exr", "what", "alpha"));
    const std::string path = drawn("alone.exr", "background", 0);
    const scripted::Pixels alone = scripted::read_exr(path);
    const scripted::Pixels whole = scripted::read_exr(drawn("whole.exr"));
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(alpha.at(x, 0)[0], x < 2 ? 1 : 0) << x;
        EXPECT_EQ(alone.at(x, 0), x < 2 ? whole.at(x, 0) : scripted::Rgb{}) << x;
        EXPECT_GT(whole.at(x, 0)[0], 0) << x;
    }
    const Imf::InputFile file(path.c_str(), 0);
    EXPECT_NE(file.header().channels().findChannel("A"), nullptr);
    // A file that cannot have an alpha is black there.
    EXPECT_EQ(scripted::errors_of([&] { drawn("alone.jpg", "background", 0); }), "");
    expect_diagnostics(scripted::errors_of([&] { drawn("depth.exr", "what", "depth", "background", 0); }),
                       {{.call = "newImager", .type = "file", .item = 7, .parameter = "background"}});
}

} // namespace
