// Spots, disks in the sky, environments and skies, against closed forms.
#include "libvantor/description/sky.h"
#include "libvantor/lights/environment.h"
#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/scripted_scene.h"

#include <ImfChannelList.h>
#include <ImfOutputFile.h>
#include <cmath>
#include <functional>
#include <random>

namespace {

using scripted::List;
using scripted::Pixels;
using scripted::Rgb;
using scripted::Scene;
using vantor::Color;
using vantor::Environment;
using vantor::Raster;
using vantor::SeenLight;
using vantor::Vec3;

constexpr double pi = 3.14159265358979;
constexpr double reflectance = 0.5;

double radians(double degrees) { return degrees * pi / 180; }

// A quad in the plane y = 0 that faces up, and a camera that sees a spot of 2 mm around the origin.
void add_floor(Scene &scene) {
    scene.camera({0.3, 0.5, 0}, {0, 0, 0}, 0.2);
    scene.MaterialBegin(scene.diffuse(reflectance));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-5, 0, 5), "edge_u", VtVector3(10, 0, 0), "edge_v",
                                 VtVector3(0, 0, -10)));
    scene.MaterialEnd();
}

// The irradiance of the floor under the lights that are added.
double irradiance(const std::function<void(Scene &)> &add_lights, int samples = 64) {
    Scene scene;
    add_floor(scene);
    add_lights(scene);
    return scene.render(8, 8, samples).mean() * pi / reflectance;
}

TEST(Spot, FallsOffBetweenItsAngles) {
    for (const double degrees : {0.0, 19.0, 22.0, 28.0, 34.0, 38.0, 39.9, 40.1, 90.0}) {
        const double lit = irradiance([&](Scene &scene) {
            // Right above; its axis leans away.
            scene.light("spot", "position", VtVector3(0, 2, 0), "direction",
                        VtVector3(std::sin(radians(degrees)), -std::cos(radians(degrees)), 0), "intensity", 6.0,
                        "cutoff_angle", 40.0, "beam_width", 20.0);
        });
        const double x = std::clamp((std::cos(radians(degrees)) - std::cos(radians(40))) /
                                        (std::cos(radians(20)) - std::cos(radians(40))),
                                    0.0, 1.0);
        EXPECT_NEAR(lit, 6 / 4.0 * x * x * (3 - 2 * x), 2e-3) << degrees;
    }
}

TEST(Spot, ShinesAtItsTargetUnderTheTransform) {
    const auto lit = [](const VtVector3 &target, double beam, double cutoff) {
        return irradiance([&](Scene &scene) {
            // Twice as large, and half a turn around Y: what was at (-0.5, 1, 0) is at (1, 2, 0).
            VtTransform transform;
            transform.Identity();
            transform[0][0] = transform[2][2] = -2;
            transform[1][1] = 2;
            scene.TransformBegin(transform);
            scene.light("spot", "position", VtVector3(-0.5, 1, 0), "target", target, "intensity", 5.0, "beam_width",
                        beam, "cutoff_angle", cutoff);
            scene.TransformEnd();
        });
    };
    // Without a fall, and inside: E = I cos / r^2 with r^2 = 5.
    EXPECT_NEAR(lit({0, 0, 0}, 1, 1), 2 / std::sqrt(5.0), 2e-3);
    EXPECT_NEAR(lit({0.5, 0, 0}, 90, 90), 2 / std::sqrt(5.0), 2e-3);
    // The axis goes past the spot by 18 degrees.
    EXPECT_EQ(lit({0.5, 0, 0}, 15, 17), 0);
}

TEST(Spot, ANarrowOneHasAllOfItsLight) {
    // From far above; where the floor is looked at, the beam is 0.1 wide to each side.
    for (const double height : {10.0, 500.0}) {
        const double beam = std::atan(0.1 / height) * 180 / pi;
        const double lit = irradiance([&](Scene &scene) {
            scene.light("spot", "position", VtVector3(0, height, 0), "target", VtVector3(0, 0, 0), "intensity",
                        3 * height * height, "beam_width", beam, "cutoff_angle", beam);
        });
        EXPECT_NEAR(lit, 3, 3e-3) << height;
    }
}

TEST(Spot, ItsBeamIsThreeQuartersWideUnlessGiven) {
    const auto lit = [](auto... beam) {
        return irradiance([&](Scene &scene) {
            scene.light("spot", "position", VtVector3(0, 2, 0), "direction", VtVector3(std::tan(radians(35)), -1, 0),
                        "cutoff_angle", 40.0, beam...);
        });
    };
    EXPECT_GT(lit(), 0.1);
    EXPECT_EQ(lit(), lit("beam_width", 30.0));
}

TEST(Distant, DiskHasTheIrradianceOfParallelLight) {
    for (const double angle : {0.0005, 0.01, 0.53, 20.0, 90.0}) {
        const double lit = irradiance([&](Scene &scene) {
            scene.light("distant", "direction", VtVector3(3, -4, 0), "irradiance", 2.0, "angle", angle);
        });
        // The whole disk is above the floor, up to 45 of 53 degrees. Stratified samples of a smooth function.
        EXPECT_NEAR(lit, 2 * 0.8, 2e-3) << angle;
    }
}

TEST(Distant, DiskIsSeenParallelLightIsNot) {
    const auto seen = [](double angle, double off_axis) {
        Scene scene;
        scene.camera({0, 0, 0}, {std::tan(radians(off_axis)), 0, -1}, 0.1);
        scene.light("distant", "direction", VtVector3(0, 0, 1), "irradiance", VtVector3(1, 2, 3), "angle", angle);
        return scene.render(4, 4, 4).at(1, 1);
    };
    // E / (pi sin^2) of the radius, 5 degrees.
    const double radiance = 1 / (pi * std::pow(std::sin(radians(5)), 2));
    for (const double inside : {0.0, 4.8})
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(seen(10, inside)[static_cast<std::size_t>(i)], (i + 1) * radiance, 1e-4 * radiance);
    EXPECT_EQ(seen(10, 5.2), (Rgb{0, 0, 0}));
    EXPECT_EQ(seen(0, 0), (Rgb{0, 0, 0}));
}

TEST(Distant, PenumbraIsAsWideAsTheDisk) {
    // A black half plane, 1 above the floor, and light from straight above: a point of the floor at x sees of the disk
    // what lies beyond a straight edge.
    Scene scene;
    List camera("position", VtVector3(0, 0.5, 0), "target", VtVector3(0, 0, 0), "up", VtVector3(0, 0, -1), "height",
                0.32);
    scene.NewCamera("orthographic", camera);
    scene.light("distant", "direction", VtVector3(0, -1, 0), "irradiance", pi / reflectance, "angle", 10.0);
    scene.MaterialBegin(scene.diffuse(reflectance));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-5, 0, 5), "edge_u", VtVector3(10, 0, 0), "edge_v",
                                 VtVector3(0, 0, -10)));
    scene.MaterialEnd();
    scene.MaterialBegin(scene.diffuse(0.0));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-5, 1, -5), "edge_u", VtVector3(5, 0, 0), "edge_v",
                                 VtVector3(0, 0, 10)));
    scene.MaterialEnd();
    const Pixels pixels = scene.render(32, 32, 64);
    const double radius = std::tan(radians(5));
    for (int x = 0; x < 32; ++x) {
        double mean = 0;
        for (int y = 0; y < 32; ++y)
            mean += pixels.at(x, y)[1] / 32;
        const double q = std::clamp((x + 0.5 - 16) / 100 / radius, -1.0, 1.0);
        // The mean of 2048 paths of 0 or 1 has a standard deviation below 0.011; the filter's width adds 0.001.
        EXPECT_NEAR(mean, 1 - (std::acos(q) - q * std::sqrt(1 - q * q)) / pi, 0.03) << x;
    }
}

Environment environment(int width, int height, const std::function<Color(int, int)> &color,
                        const VtTransform &world_from_local = vantor::identity()) {
    Raster raster(width, height, vantor::PixelFormat());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            raster.set(x, y, color(x, y));
    return {std::move(raster), {1, 1, 1}, vantor::to_float(world_from_local), vantor::Interrupt()};
}

Color patchwork(int x, int y) {
    const float value = static_cast<float>((7 * x + 5 * y) % 11);
    return {value, (x + y) % 3 == 0 ? 20.0f : 0.1f, 0.5f};
}

// Mirrors, stretches and turns; its determinant is 1.
VtTransform odd_transform() {
    VtTransform transform;
    transform.Identity();
    transform[0][0] = 0;
    transform[0][1] = 2;
    transform[1][0] = 0.8;
    transform[1][1] = 0;
    transform[2][2] = 1 / 1.6;
    transform[2][0] = 0.3;
    return transform;
}

TEST(Environment, DensityIntegratesToOneAndSamplesFollowIt) {
    for (const VtTransform &transform : {vantor::identity(), odd_transform()}) {
        const Environment light = environment(9, 6, patchwork, transform);
        // Equal solid angles: bins of height by longitude, and fine steps in each.
        constexpr int bins = 8;
        constexpr int steps = 64;
        std::vector<double> expected(bins * bins);
        double total = 0;
        for (int i = 0; i < bins * steps; ++i)
            for (int j = 0; j < bins * steps; ++j) {
                const double height = 1 - 2 * (i + 0.5) / (bins * steps);
                const double turn = 2 * pi * (j + 0.5) / (bins * steps);
                const double radius = std::sqrt(1 - height * height);
                const Vec3 direction{static_cast<float>(radius * std::cos(turn)), static_cast<float>(height),
                                     static_cast<float>(radius * std::sin(turn))};
                const double share = light.seen(direction).pdf * 4 * pi / (bins * steps * bins * steps);
                expected[static_cast<std::size_t>(i / steps * bins + j / steps)] += share;
                total += share;
            }
        EXPECT_NEAR(total, 1, 1e-3);

        constexpr int draws = 50000;
        std::vector<int> counts(expected.size());
        std::mt19937 random(1);
        const auto number = [&] { return vantor::sobol::unit_float(static_cast<std::uint32_t>(random())); };
        for (int i = 0; i < draws; ++i) {
            SeenLight drawn;
            const float u = number();
            const Vec3 direction = light.sample({u, number()}, drawn);
            ASSERT_NEAR(length(direction), 1, 1e-5);
            // To rounding.
            if (i % 100 == 0) {
                const SeenLight seen = light.seen(direction);
                EXPECT_NEAR(drawn.pdf, seen.pdf, 1e-3 * seen.pdf + 1e-6);
                EXPECT_NEAR(drawn.radiance.r, seen.radiance.r, 1e-4);
            }
            const int row = std::min(static_cast<int>((1 - direction.y) / 2 * bins), bins - 1);
            const double turn = std::atan2(direction.z, direction.x) / (2 * pi);
            const int column = std::min(static_cast<int>((turn < 0 ? turn + 1 : turn) * bins), bins - 1);
            ++counts[static_cast<std::size_t>(row * bins + column)];
        }
        double chi_square = 0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            EXPECT_GT(expected[i] * draws, 5);
            chi_square += std::pow(counts[i] - expected[i] * draws, 2) / (expected[i] * draws);
        }
        // The 99.99 % point with 63 degrees of freedom is 112; the steps' error of the expectation adds some.
        EXPECT_LT(chi_square, 130);
    }
}

TEST(Environment, NoDirectionThatShinesIsNeverDrawn) {
    // One bright pixel among black ones: interpolation spreads it up to the middles of its neighbours.
    const Environment light = environment(8, 8, [](int x, int y) {
        const float value = x == 0 && y == 3 ? 1.0f : 0.0f;
        return Color{value, value, value};
    });
    for (int i = 0; i < 200; ++i)
        for (int j = 0; j < 200; ++j) {
            const double polar = pi * (i + 0.5) / 200;
            const double turn = 2 * pi * (j + 0.5) / 200;
            const Vec3 direction{static_cast<float>(std::sin(polar) * std::cos(turn)),
                                 static_cast<float>(std::cos(polar)),
                                 static_cast<float>(std::sin(polar) * std::sin(turn))};
            if (light.radiance(direction).g > 0) {
                EXPECT_GT(light.seen(direction).pdf, 0) << i << " " << j;
            }
        }
    // A pyramid, whose mean is a quarter: twice pi / 4 wide, from the middle of row 2 to that of row 4.
    EXPECT_NEAR(light.fluence(), pi / 8 * (std::cos(pi * 2.5 / 8) - std::cos(pi * 4.5 / 8)), 1e-5);
}

// What each sample brings is the whole light, but for cells where the cosine of the polar angle is not linear; there
// samples differ, and are right on average. Of tall pictures cosines near the poles have few digits.
TEST(Environment, SamplesOfABrightPixelBringAllOfIt) {
    struct Case {
        int width, height, x, y;
        double most_spread;
    };
    for (const Case &c : {Case{8, 8, 0, 3, 0.05}, Case{64, 32, 63, 20, 0.01}, Case{1, 1, 0, 0, 1e-3},
                          Case{4, 2048, 1, 0, 0.3}, Case{4, 2048, 1, 1, 0.3}, Case{4, 2048, 0, 2046, 0.3},
                          Case{4, 2048, 3, 2047, 0.3}, Case{4, 2047, 3, 1023, 0.01}}) {
        const Environment light = environment(c.width, c.height, [&](int x, int y) {
            const float value = x == c.x && y == c.y ? 1.0f : 0.0f;
            return Color{value, value, value};
        });
        // The integral of a tent over the polar angle, as wide as two pixels; around a pole it is flat, from the middle
        // of the pixel on. Across the picture it is the width of the pixel.
        const double pixel = pi / c.height;
        const int from_pole = std::min(c.y, c.height - 1 - c.y);
        const double falls = std::cos(pixel / 2) - (std::sin(3 * pixel / 2) - std::sin(pixel / 2)) / pixel;
        const double down = c.height == 1    ? 2
                            : from_pole == 0 ? 1 - std::cos(pixel / 2) + falls
                                             : 2 * std::sin((from_pole + 0.5) * pixel) * (1 - std::cos(pixel)) / pixel;
        const double whole = down * 2 * pi / c.width;

        constexpr int steps = 64;
        double mean = 0;
        double square = 0;
        for (int i = 0; i < steps; ++i)
            for (int j = 0; j < steps; ++j) {
                SeenLight seen;
                light.sample({(static_cast<float>(i) + 0.5f) / steps, (static_cast<float>(j) + 0.5f) / steps}, seen);
                const double brings = seen.radiance.g / seen.pdf / whole;
                mean += brings / (steps * steps);
                square += (brings - 1) * (brings - 1) / (steps * steps);
            }
        EXPECT_NEAR(mean, 1, 3e-3) << c.height << " " << c.y;
        EXPECT_LT(std::sqrt(square), c.most_spread) << c.height << " " << c.y;
    }
}

TEST(Environment, BlackOnesHaveNoDensity) {
    const Environment light = environment(2, 2, [](int, int) { return Color(); });
    EXPECT_TRUE(light.is_black());
    EXPECT_EQ(light.seen({0, 1, 0}).pdf, 0);
}

TEST(Environment, ConstantOneHasPiTimesItsRadiance) {
    const double lit = irradiance([](Scene &scene) { scene.light("environment", "radiance", 3.0); }, 256);
    // 16384 paths, the deviation of one of which is below the value itself, stratified: far below 0.8 %.
    EXPECT_NEAR(lit, 3 * pi, 0.01 * 3 * pi);
}

TEST(Environment, WhiteThingsInAConstantOneCannotBeSeen) {
    Scene scene;
    scene.camera({0, 1, 5}, {0, 0, 0}, 40);
    scene.light("environment", "radiance", VtVector3(1, 2, 4));
    scene.MaterialBegin(scene.diffuse(1.0));
    scene.AddObject(scene.object("sphere"));
    scene.AddObject(scene.object("box", "min", VtVector3(-1, -2, -1), "max", VtVector3(1, -1, 1)));
    scene.MaterialEnd();
    Rgb mean{};
    const Pixels pixels = scene.render(32, 32, 256);
    for (const Rgb &pixel : pixels.values)
        for (std::size_t i = 0; i < 3; ++i)
            mean[i] += pixel[i] / 1024;
    // The background is exact. On the things, at most 262144 paths with a deviation below 1: 0.2 % each.
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(mean[i], 1 << i, 0.006 * (1 << i));
    EXPECT_EQ(pixels.at(0, 0), (Rgb{1, 2, 4}));
}

std::string write_picture(const std::string &name, int width, int height, const std::function<Rgb(int, int)> &color) {
    std::vector<Rgb> values;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            values.push_back(color(x, y));
    const std::string path = scripted::path_of(name);
    Imf::Header header(width, height);
    Imf::FrameBuffer frame;
    const char *names[] = {"R", "G", "B"};
    for (std::size_t i = 0; i < 3; ++i) {
        header.channels().insert(names[i], Imf::Channel(Imf::FLOAT));
        frame.insert(names[i], Imf::Slice(Imf::FLOAT, reinterpret_cast<char *>(&values[0][i]), sizeof(Rgb),
                                          sizeof(Rgb) * static_cast<std::size_t>(width)));
    }
    Imf::OutputFile file(path.c_str(), header, 0);
    file.setFrameBuffer(frame);
    file.writePixels(height);
    return path;
}

// The radiance of a quad that faces along +X, in front of a camera that sees nothing else, under an environment of two
// halves: the left one has radiance 1, the right one 3. The light is turned around Y, to the left as seen from above.
double lit_by_halves(double turned) {
    const std::string path = write_picture("halves.exr", 64, 32, [](int x, int) {
        const float value = x < 32 ? 1.0f : 3.0f;
        return Rgb{value, value, value};
    });
    Scene scene;
    scene.camera({2, 0, 0}, {0, 0, 0}, 20);
    VtTransform turn;
    turn.Identity();
    turn[0][0] = turn[2][2] = std::cos(radians(turned));
    turn[0][2] = -std::sin(radians(turned));
    turn[2][0] = std::sin(radians(turned));
    scene.TransformBegin(turn);
    scene.light("environment", "name", path, "radiance", 2.0);
    scene.TransformEnd();
    scene.MaterialBegin(scene.diffuse(reflectance));
    scene.AddObject(scene.object("quad", "origin", VtVector3(0, -1, 1), "edge_u", VtVector3(0, 0, -2), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.MaterialEnd();
    return scene.render(8, 8, 256).mean() / reflectance;
}

TEST(Environment, TwoHalvesLightWhatFacesThem) {
    // The middle of the picture is -Z, so its right half is +X. A cosine-weighted mean over a hemisphere is L; the seam
    // lies where the cosine is 0. 16384 paths: as above.
    EXPECT_NEAR(lit_by_halves(0), 6, 0.06);
    EXPECT_NEAR(lit_by_halves(180), 2, 0.02);
    // Half of what it sees each; the seam is symmetric.
    EXPECT_NEAR(lit_by_halves(90), 4, 0.04);
    // Turned by an angle a, a cosine-weighted lune of the other half comes in: (1 - cos a) / 2 of the hemisphere.
    EXPECT_NEAR(lit_by_halves(60), 6 - 4 * 0.25, 0.06);
}

TEST(Environment, APanoramaOfItIsItself) {
    const std::string path = write_picture("ramp.exr", 16, 8, [](int x, int y) {
        return Rgb{static_cast<float>(x), static_cast<float>(y), 7};
    });
    Scene scene;
    const List none;
    scene.NewCamera("panorama", const_cast<List &>(none));
    scene.light("environment", "name", path);
    const Pixels pixels = scene.render(64, 32, 256);
    // Between the middles of the pixels at the edge, the picture is linear and the filter symmetric. The mean of 256
    // stratified instances in a tent of 2 pixels, half a pixel of the environment, varies by less than 0.01.
    for (int y = 4; y < 28; ++y)
        for (int x = 4; x < 60; ++x) {
            EXPECT_NEAR(pixels.at(x, y)[0], (x + 0.5) / 4 - 0.5, 0.02);
            EXPECT_NEAR(pixels.at(x, y)[1], (y + 0.5) / 4 - 0.5, 0.02);
            EXPECT_NEAR(pixels.at(x, y)[2], 7, 1e-5);
        }
    // Left of the middle of the first column it goes over to the last one.
    EXPECT_NEAR(pixels.at(0, 16)[0], 15 * 0.375, 0.3);
}

TEST(Environment, UnusablePicturesAreReported) {
    const auto errors = [](const std::string &path) {
        Scene scene;
        return scripted::errors_of([&] { scene.light("environment", "name", path); });
    };
    EXPECT_EQ(errors("/nowhere.exr"), "vantor: newLight \"environment\": item 1: parameter \"name\" is "
                                      "\"/nowhere.exr\", which cannot be read: No such file or directory (the light is "
                                      "black)\n");
    const std::string path = write_picture("odd.exr", 2, 2, [](int x, int y) {
        return x == 1 ? Rgb{1, 1, 1} : y == 0 ? Rgb{NAN, 1, 1} : Rgb{0, -1, INFINITY};
    });
    EXPECT_EQ(errors(path), "vantor: newLight \"environment\": item 1: parameter \"name\" has 2 pixels with values "
                            "that are no radiance (0 to 1e18 are; they count as 0)\n");
}

TEST(Environment, NegativeValuesBesideBrightOnesAreBlack) {
    // What is left of 10 by a filter that sharpens: down to a tenth below 0.
    const auto errors = [](float lowest) {
        const std::string path = write_picture("sharp.exr", 4, 2, [&](int x, int) {
            return x == 1 ? Rgb{10, 10, 10} : x == 2 ? Rgb{-0.25f, 0.5f, lowest} : Rgb{0.5f, 0.5f, 0.5f};
        });
        Scene scene;
        return scripted::errors_of([&] { scene.light("environment", "name", path); });
    };
    EXPECT_EQ(errors(-1), "");
    EXPECT_NE(errors(-1.25f).find("has 2 pixels with values that are no radiance"), std::string::npos);

    const std::string path = write_picture("sharp.exr", 4, 2, [](int x, int) {
        return x == 1 ? Rgb{10, 10, 10} : Rgb{-0.25f, 0.5f, -1};
    });
    Scene scene;
    const List none;
    scene.NewCamera("panorama", const_cast<List &>(none));
    scene.light("environment", "name", path);
    float lowest = 1;
    for (const Rgb &value : scene.render(16, 8, 1).values)
        lowest = std::min({lowest, value[0], value[1], value[2]});
    EXPECT_EQ(lowest, 0);
}

TEST(Environment, InterruptStopsItsMaking) {
    // A poll for each row.
    scripted::expect_prompt(300, [] { environment(2, 300, patchwork); });

    const std::string path = write_picture("interrupted.exr", 4, 200, [](int, int) { return Rgb{1, 1, 1}; });
    const scripted::InterruptHandler handler;
    const auto errors = [&] {
        Scene scene;
        return scripted::errors_of([&] { scene.light("environment", "name", path); });
    };
    // After the reading, which polls as often.
    const vantor::InterruptAtPoll interrupt(450);
    EXPECT_EQ(errors(), "vantor: newLight \"environment\": interrupted; the light is black\n");
    EXPECT_EQ(handler.count(), 1);
    EXPECT_EQ(errors(), "");
}

// What the paper's formulas give, worked out apart from the code: turbidity; the sun's angle from the zenith; the angle
// of the direction from there, and its azimuth from the sun's; radiance and luminance.
struct SkySample {
    double turbidity, sun, polar, azimuth;
    Rgb radiance;
    double luminance;
};
constexpr SkySample sky_samples[] = {
    {2, 30, 0, 0, {0.40417f, 0.59093f, 1.10992f}, 0.58867},   {3, 45, 0, 0, {0.46243f, 0.74098f, 1.43769f}, 0.73204},
    {3, 45, 60, 0, {1.87495f, 2.17134f, 3.05770f}, 2.17224},  {3, 45, 60, 180, {0.32311f, 0.60862f, 1.10407f}, 0.58367},
    {6, 70, 45, 90, {0.51536f, 0.66169f, 0.81910f}, 0.64192}, {10, 85, 80, 10, {1.28929f, 0.56234f, 0.12280f}, 0.68512},
};

VtVector3 at_angles(double polar, double azimuth) {
    return {std::sin(radians(polar)) * std::cos(radians(azimuth)), std::cos(radians(polar)),
            std::sin(radians(polar)) * std::sin(radians(azimuth))};
}

TEST(Sky, RadianceFollowsThePaper) {
    for (const SkySample &sample : sky_samples) {
        const vantor::SkyModel model(at_angles(sample.sun, 20), sample.turbidity);
        const Color radiance = model.radiance(at_angles(sample.polar, 20 + sample.azimuth));
        EXPECT_NEAR(radiance.r, sample.radiance[0], 2e-5);
        EXPECT_NEAR(radiance.g, sample.radiance[1], 2e-5);
        EXPECT_NEAR(radiance.b, sample.radiance[2], 2e-5);
        // The matrices of colour have four digits.
        EXPECT_NEAR(luminance(radiance), sample.luminance, 3e-4 * sample.luminance);
    }
}

TEST(Sky, SunIsAttenuatedByTheAir) {
    const auto expect_sun = [](double turbidity, double polar, Rgb wanted) {
        const Color sun = vantor::SkyModel(at_angles(polar, 0), turbidity).sun_irradiance();
        EXPECT_NEAR(sun.r, wanted[0], 2e-5);
        EXPECT_NEAR(sun.g, wanted[1], 2e-5);
        EXPECT_NEAR(sun.b, wanted[2], 2e-5);
    };
    expect_sun(2, 0, {10.93471f, 10.43098f, 9.22371f});
    expect_sun(3, 45, {9.06897f, 8.33456f, 6.76752f});
    expect_sun(6, 80, {0.76515f, 0.44362f, 0.12935f});
}

TEST(Sky, IsFiniteAndPositiveEverywhere) {
    for (const double turbidity : {2.0, 10.0})
        for (const double polar : {0.0, 45.0, 89.0, 90.0}) {
            const VtVector3 to_sun = at_angles(polar, 0);
            const Raster picture = sky_picture(vantor::SkyModel(to_sun, turbidity), to_sun, true, {0.2f, 0.2f, 0.2f});
            for (int y = 0; y < picture.height(); ++y)
                for (int x = 0; x < picture.width(); ++x) {
                    const Color c = picture.at(x, y);
                    ASSERT_TRUE(is_finite(c) && c.r >= 0 && c.g >= 0 && c.b >= 0 && largest_component(c) > 0);
                }
        }
}

// Zenith, ground and the sun as the camera sees them.
TEST(Sky, IsSeenAndTurnsWithTheTransform) {
    const auto seen = [](const VtVector3 &direction, bool is_turned) {
        Scene scene;
        List list("target", direction, "up", VtVector3(0.1, 0.2, 1), "fov", 0.1);
        scene.NewCamera("perspective", list);
        VtTransform turn; // what was +Y is +X
        turn.Identity();
        if (is_turned) {
            turn[0][0] = turn[1][1] = 0;
            turn[1][0] = 1;
            turn[0][1] = -1;
        }
        scene.TransformBegin(turn);
        scene.light("sky", "sun_direction", VtVector3(0, 1, 1), "turbidity", 3.0, "scale", 2.0, "ground_albedo",
                    VtVector3(0, 0.5, 1));
        scene.TransformEnd();
        return scene.render(4, 4, 4).at(1, 1);
    };
    // The picture's pixels are 0.7 degrees high, over which the sky hardly changes.
    for (const Rgb zenith : {seen({0, 1, 0}, false), seen({1, 0, 0}, true)})
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(zenith[i], 2 * sky_samples[1].radiance[i], 0.01 * zenith[i]);
    const double radius = radians(0.53 / 2);
    for (const Rgb sun : {seen({0, 1, 1}, false), seen({1, 0, 1}, true)})
        EXPECT_NEAR(sun[0], 2 * 9.06897 / (pi * radius * radius), 0.01 * sun[0]);
    EXPECT_LT(seen({0, 1, 1.02}, false)[0], 10);
    const Rgb ground = seen({0.1, -1, 0}, false);
    EXPECT_EQ(ground[0], 0);
    EXPECT_GT(ground[1], 2 * 0.5 * 8.33 * std::cos(radians(45)) / pi);
    EXPECT_LT(ground[1], 2 * 0.5 * (8.33 * std::cos(radians(45)) / pi + 2));
}

TEST(Sky, TheSunCastsAShadow) {
    // With an occluder between the floor and the sun that hides little else.
    const auto lit = [](VtLong sun, bool is_hidden) {
        return irradiance(
            [&](Scene &scene) {
                scene.light("sky", "sun_direction", VtVector3(-1, 1, 0), "sun", static_cast<int>(sun), "ground_albedo",
                            0.0);
                if (is_hidden) {
                    scene.MaterialBegin(scene.diffuse(0.0));
                    scene.AddObject(scene.object("sphere", "center", VtVector3(-20, 20, 0), "radius", 0.5));
                    scene.MaterialEnd();
                }
            },
            256);
    };
    const double sky = lit(0, false);
    const double shaded = lit(1, true);
    const double sunny = lit(1, false);
    // Of the green channel. 16384 stratified paths, shared between sky and sun.
    EXPECT_NEAR(sunny - sky, 8.33456 / std::sqrt(2.0), 0.1);
    // The sphere hides less than a thousandth of the sky's light, and all of the sun.
    EXPECT_NEAR(shaded, sky, 0.01 * sky);
}

TEST(Lights, ManyKindsAddUp) {
    const auto lit_by = [](unsigned which) {
        Scene scene;
        add_floor(scene);
        const VtLong ids[] = {
            scene.light("spot", "position", VtVector3(0.5, 2, 0), "direction", VtVector3(0, -1, 0), "intensity", 7.0),
            scene.light("distant", "direction", VtVector3(3, -4, 0), "angle", 5.0),
            scene.light("environment", "radiance", 0.3),
            scene.light("sky", "scale", 0.2),
            scene.light("point", "position", VtVector3(0, 2, 1.5), "intensity", 7.0),
        };
        for (unsigned i = 0; i < 5; ++i)
            if (!(which >> i & 1))
                scene.LightOff(ids[i]);
        return scene.render(8, 8, 256).mean();
    };
    double sum = 0;
    for (unsigned i = 0; i < 5; ++i) {
        const double alone = lit_by(1u << i);
        EXPECT_GT(alone, 0.01) << i;
        sum += alone;
    }
    // 16384 choices among six sources; the deviation of one is about the mean.
    EXPECT_NEAR(lit_by(31), sum, 0.02 * sum);
    EXPECT_EQ(lit_by(0), 0);
}

TEST(Lights, MistakesAreReported) {
    const auto errors = [](const char *type, const auto &...values) {
        Scene scene;
        return scripted::errors_of([&] { scene.light(type, values...); });
    };
    EXPECT_EQ(errors("spot", "cutoff_angle", 20.0, "beam_width", 30.0),
              "vantor: newLight \"spot\": item 3: parameter \"beam_width\" is 30, more than the cutoff_angle 20 (which "
              "counts)\n");
    EXPECT_EQ(
        errors("spot", "target", VtVector3(0, 0, 0)),
        "vantor: newLight \"spot\": item 1: parameter \"target\" is the light's position (\"direction\" counts)\n");
    EXPECT_EQ(errors("spot", "target", VtVector3(0, 1, 0), "direction", VtVector3(0, 1, 0)),
              "vantor: newLight \"spot\": item 3: parameter \"direction\" has no effect beside \"target\"\n");
    EXPECT_EQ(errors("spot", "position", VtVector3(1e9, 0, 0)), "");
    EXPECT_EQ(errors("sky", "turbidity", 1.5),
              "vantor: newLight \"sky\": item 1: parameter \"turbidity\" is out of range: expected 2 to 10, got 1.5\n");
    const std::string below = "vantor: newLight \"sky\": item 1: parameter \"sun_direction\" is below the horizon (the "
                              "sky is that of sunset, without the sun)\n";
    EXPECT_EQ(errors("sky", "sun_direction", VtVector3(1, -0.1, 0)), below);
    EXPECT_EQ(errors("sky", "sun_direction", VtVector3(0, -1, 0)), below);
}

} // namespace
