// Media: their own mathematics, and light through bodies that they fill.
#include "libvantor/scattering/medium.h"
#include "tests/libvantor/scripted_scene.h"

namespace {

using scripted::List;
using scripted::Scene;
using vantor::HenyeyGreenstein;
using vantor::Medium;
using vantor::MediumStack;
using vantor::Point2f;
using vantor::Vec3;

constexpr int side = 512; // of a grid of numbers, taken at the middles

template <class Work> void for_each_pair(Work work) {
    for (int i = 0; i < side; ++i)
        for (int j = 0; j < side; ++j)
            work(Point2f{(static_cast<float>(i) + 0.5f) / side, (static_cast<float>(j) + 0.5f) / side});
}

TEST(PhaseFunction, IsAPdfWithTheMeanCosineG) {
    for (const float g : {-0.7f, 0.0f, 0.3f, 0.9f}) {
        const HenyeyGreenstein phase{g};
        double sum = 0;
        double mean = 0;
        constexpr int steps = 20000; // the midpoint rule over the cosine
        for (int i = 0; i < steps; ++i) {
            const double cosine = -1 + 2 * (i + 0.5) / steps;
            const double pdf = 2 * M_PI * phase.evaluate(static_cast<float>(cosine)) * 2 / steps;
            sum += pdf;
            mean += pdf * cosine;
        }
        EXPECT_NEAR(sum, 1, 1e-3) << g;
        EXPECT_NEAR(mean, g, 1e-3) << g;
    }
}

TEST(PhaseFunction, SamplesFollowIt) {
    const Vec3 before = vantor::normalized({0.3f, -0.5f, 0.2f});
    for (const float g : {-0.7f, 0.0f, 0.5f, 0.9f}) {
        const HenyeyGreenstein phase{g};
        constexpr int bins = 16; // of equal steps of the cosine
        std::array<double, bins> found{};
        for_each_pair([&](Point2f numbers) {
            const float cosine = dot(before, phase.sample(before, numbers));
            found[static_cast<std::size_t>(std::min(bins - 1, static_cast<int>((cosine + 1) / 2 * bins)))] += 1;
        });
        for (std::size_t bin = 0; bin < bins; ++bin) {
            double wanted = 0;
            constexpr int steps = 2000;
            for (int i = 0; i < steps; ++i) {
                const double cosine = -1 + 2.0 / bins * (static_cast<double>(bin) + (i + 0.5) / steps);
                wanted += 2 * M_PI * phase.evaluate(static_cast<float>(cosine)) * 2 / bins / steps;
            }
            // The grid has 512 steps in the number that says the cosine: a bin is right to one of them at each end.
            EXPECT_NEAR(found[bin] / (side * side), wanted, 2.0 / side) << g << ", bin " << bin;
        }
    }
}

TEST(Medium, SampledDistancesGiveTheTransmittanceAndTheScatteredFraction) {
    const Medium medium{{0.1f, 0.5f, 0.0f}, {0.7f, 0.2f, 0.0f}};
    constexpr float distance = 1.5f;
    vantor::Color through;
    vantor::Color scattered;
    for_each_pair([&](Point2f numbers) {
        const Medium::DistanceSample flight = medium.sample_distance(distance, numbers);
        (flight.is_scattered ? scattered : through) += flight.weight * (1.0f / (side * side));
        EXPECT_LE(vantor::largest_component(flight.weight), 3.0001f);
    });
    // A grid of 512 steps, whose weights are at most 3.
    const vantor::Color left = medium.transmittance(distance);
    EXPECT_NEAR(through.r, left.r, 0.01);
    EXPECT_NEAR(through.g, left.g, 0.01);
    EXPECT_NEAR(through.b, 1, 0.01);
    EXPECT_NEAR(scattered.r, 0.7 / 0.8 * (1 - left.r), 0.01);
    EXPECT_NEAR(scattered.g, 0.2 / 0.7 * (1 - left.g), 0.01);
    EXPECT_EQ(scattered.b, 0);
}

TEST(Medium, WhatOnlyAbsorbsIsNotLeftToChance) {
    const Medium medium{{0.1f, 0.5f, 0.0f}, {0, 0, 0}};
    for_each_pair([&](Point2f numbers) {
        const Medium::DistanceSample flight = medium.sample_distance(1.5f, numbers);
        ASSERT_FALSE(flight.is_scattered);
        ASSERT_EQ(flight.weight.r, std::exp(-0.1f * 1.5f));
        ASSERT_EQ(flight.weight.g, std::exp(-0.5f * 1.5f));
        ASSERT_EQ(flight.weight.b, 1);
    });
}

TEST(Medium, WhatAPathCarriesNeverGrowsInSum) {
    // Channels are chosen by what is carried, so that a path that has only one of them follows that alone.
    const Medium medium{{0.1f, 0.0f, 0.0f}, {0.7f, 20.0f, 0.0f}};
    for (const vantor::Color carried : {vantor::Color{1, 1, 1}, {1, 0, 0}, {0.2f, 0.001f, 3}, {0, 0, 0}}) {
        const float before = carried.r + carried.g + carried.b;
        double through = 0;
        double scattered = 0;
        for_each_pair([&](Point2f numbers) {
            const Medium::DistanceSample flight = medium.sample_distance(1.5f, numbers, carried);
            const vantor::Color after = carried * flight.weight;
            ASSERT_LE(after.r + after.g + after.b, before * 1.0001f);
            (flight.is_scattered ? scattered : through) += after.r / (side * side);
        });
        // A grid of 512 steps, as above.
        const double left = std::exp(-0.8 * 1.5);
        EXPECT_NEAR(through, carried.r * left, 0.01) << carried.b;
        EXPECT_NEAR(scattered, carried.r * 0.7 / 0.8 * (1 - left), 0.01) << carried.b;
    }
}

TEST(Medium, BodiesAreLeftByThemselves) {
    MediumStack stack;
    EXPECT_EQ(stack.innermost(), MediumStack::none);
    stack.leave(3); // was never entered
    stack.enter(1);
    stack.enter(2);
    stack.enter(1);
    stack.leave(2);
    EXPECT_EQ(stack.innermost(), 1);
    stack.leave(1);
    EXPECT_EQ(stack.innermost(), 1);
    stack.leave(1);
    EXPECT_EQ(stack.innermost(), MediumStack::none);
    for (int i = 0; i < 20; ++i) // any number of bodies of one medium
        stack.enter(5);
    for (int i = 0; i < 19; ++i)
        stack.leave(5);
    EXPECT_EQ(stack.innermost(), 5);
    stack.leave(5);
    for (int i = 0; i < 100; ++i)
        stack.enter(i);
    for (int i = 99; i >= 0; --i)
        stack.leave(i);
    EXPECT_EQ(stack.innermost(), MediumStack::none);
}

// A camera at the origin, and a light of radiance 1 that fills its picture at a distance of 2.
void add_camera_and_light(Scene &scene) {
    scene.camera({0, 0, 0}, {0, 0, -1}, 5);
    scene.light("area");
    scene.LightBegin();
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, -2), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.LightEnd();
}

template <class... Values> VtLong new_interior(Scene &scene, const Values &...values) {
    List list(values...);
    return scene.NewInterior("homogeneous", list);
}

TEST(Media, CameraInABodyLooksThroughTheMedium) {
    Scene scene;
    scene.InteriorBegin(new_interior(scene, "sigma_a", VtVector3(0.5, 1, 0)));
    scene.AddObject(scene.object("sphere", "radius", 10.0));
    scene.InteriorEnd();
    add_camera_and_light(scene);
    const scripted::Pixels pixels = scene.render(8, 8, 256);
    // Beer-Lambert over a distance of 2, which differs by 0.1 % over the picture. Each of 16384 paths arrives with
    // weight 0 to 3 in proportions that make a standard deviation below 1: the standard error is below 0.8 %.
    double red = 0;
    for (const scripted::Rgb &value : pixels.values)
        red += value[0] / static_cast<double>(pixels.values.size());
    EXPECT_NEAR(red, std::exp(-1), 0.025);
    EXPECT_NEAR(pixels.mean(), std::exp(-2), 0.025);
}

TEST(Media, TheInnermostBodyCounts) {
    Scene scene;
    scene.InteriorBegin(new_interior(scene, "sigma_a", 3.0));
    scene.AddObject(scene.object("sphere", "radius", 10.0));
    scene.InteriorBegin(new_interior(scene, "sigma_t", 0.25, "albedo", 0.0));
    scene.AddObject(scene.object("sphere", "radius", 5.0));
    scene.InteriorEnd();
    scene.InteriorEnd();
    add_camera_and_light(scene);
    // As above: one channel, weights of 0 or 1, a standard error below 0.4 %.
    EXPECT_NEAR(scene.render(8, 8, 256).mean(), std::exp(-0.5), 0.015);
}

TEST(Media, LightThatIsSampledIsAbsorbedOnItsWay) {
    // A point light at distance 1 above a plate that the camera sees from 1 beside it, all in one medium.
    Scene scene;
    scene.InteriorBegin(new_interior(scene, "sigma_a", 0.5));
    scene.AddObject(scene.object("sphere", "radius", 10.0));
    scene.InteriorEnd();
    scene.camera({0, 0, 0.5}, {0, 0, 0}, 1);
    scene.light("point", "position", VtVector3(0, 0, 1), "intensity", M_PI);
    scene.MaterialBegin(scene.diffuse(0.5));
    scene.AddObject(scene.object("quad", "origin", VtVector3(-1, -1, 0), "edge_u", VtVector3(2, 0, 0), "edge_v",
                                 VtVector3(0, 2, 0)));
    scene.MaterialEnd();
    // Radiance 0.5 of reflection, over a way of 1 to the plate and 0.5 to the camera. Standard error below 0.4 %.
    EXPECT_NEAR(scene.render(8, 8, 256).mean(), 0.5 * std::exp(-0.75), 0.008);
}

// A surface that is nothing but the boundary of its body.
void begin_boundary(Scene &scene) {
    List diffuse("reflectance", 0.0);
    List surface("interface", scene.NewInterface("diffuse", diffuse), "opacity", 0.0);
    scene.MaterialBegin(scene.NewMaterial("surface", surface));
}

TEST(Media, SlabAbsorbsByBeerAndLambert) {
    // A box of 0.8 between camera and light.
    Scene scene;
    add_camera_and_light(scene);
    begin_boundary(scene);
    scene.InteriorBegin(new_interior(scene, "sigma_a", 1.5));
    scene.AddObject(scene.object("box", "min", VtVector3(-1, -1, -1.4), "max", VtVector3(1, 1, -0.6)));
    scene.InteriorEnd();
    scene.MaterialEnd();
    // Weights of 0 or 1 in 16384 paths: a standard error below 0.4 %. Seen aslant the box is at most 0.2 % thicker.
    EXPECT_NEAR(scene.render(8, 8, 256).mean(), std::exp(-1.2), 0.013);
}

TEST(Media, BodyThatOnlyScattersIsInvisibleInAnEvenEnvironment) {
    for (const double g : {-0.6, 0.0, 0.8}) {
        Scene scene;
        scene.camera({0, 0, 4}, {0, 0, 0}, 40);
        scene.light("environment", "radiance", 1.0);
        begin_boundary(scene);
        scene.InteriorBegin(new_interior(scene, "sigma_s", VtVector3(3, 1, 0.2), "g", g));
        scene.AddObject(scene.object("sphere"));
        scene.InteriorEnd();
        scene.MaterialEnd();
        // Nothing is lost, and light comes from everywhere: radiance 1. In 65536 paths with weights below 3, of which
        // the deviation is below 1, the standard error is below 0.4 %.
        EXPECT_NEAR(scene.render(16, 16, 256).mean(), 1, 0.012) << g;
    }
}

TEST(Media, BoundariesDoNotHideALightFromTheMedium) {
    // Single scattering: a thin body beside a distant light. Its radiance across is sigma_s / (4 pi) times the
    // irradiance and the thickness, up to the extinction, which is 1 % here.
    Scene scene;
    scene.camera({0, 0, 4}, {0, 0, 0}, 1);
    scene.light("distant", "direction", VtVector3(-1, 0, 0), "irradiance", 4 * M_PI);
    begin_boundary(scene);
    scene.InteriorBegin(new_interior(scene, "sigma_s", 0.01));
    scene.AddObject(scene.object("sphere", "radius", 1.0));
    scene.InteriorEnd();
    scene.MaterialEnd();
    // 1 of 50 paths is scattered, so of 65536 some 1300 bring light: a standard error of 3 %.
    EXPECT_NEAR(scene.render(16, 16, 256).mean(), 0.02, 0.002);
}

TEST(Media, LightOfAPointIsScatteredAllAlongTheRay) {
    // A point light 0.1 beside the middle of a thin body, and rays that cross a length of 2 of it; one scattering.
    constexpr double absorption = 0.3;
    constexpr double scattering = 0.02;
    Scene scene;
    List settings("max_depth", 1);
    scene.NewImager("settings", settings);
    List camera("height", 1e-4, "position", VtVector3(0, 0, 4), "target", VtVector3(0, 0, 0));
    scene.NewCamera("orthographic", camera);
    scene.light("point", "position", VtVector3(0.1, 0, 0), "intensity", 4 * M_PI);
    begin_boundary(scene);
    scene.InteriorBegin(new_interior(scene, "sigma_a", absorption, "sigma_s", scattering));
    scene.AddObject(scene.object("sphere", "radius", 1.0));
    scene.InteriorEnd();
    scene.MaterialEnd();
    double expected = 0;
    constexpr int steps = 10000; // the midpoint rule along the ray
    for (int i = 0; i < steps; ++i) {
        const double z = -1 + 2 * (i + 0.5) / steps;
        const double squared_distance = z * z + 0.01;
        const double way = 1 - z + std::sqrt(squared_distance);
        expected += scattering * std::exp(-(absorption + scattering) * way) / squared_distance * 2 / steps;
    }
    // By equal angles only the transmittance varies, from 0.3 to 1; by flights, 1 of 25 paths would find any light.
    // 1024 stratified numbers of it are right to a thousandth; shuffled ones would have a standard error of 0.5 %.
    EXPECT_NEAR(scene.render(8, 8, 16).mean(), expected, 0.005 * expected);
}

// A ball of radius 1 that scatters once, and a ray through its middle, from +Z, that a spot lights a part of.
TEST(Media, LightOfASpotIsScatteredWhereTheRayIsInItsCone) {
    constexpr double absorption = 0.3;
    constexpr double scattering = 0.02;
    constexpr double cutoff = 12;
    struct Case {
        VtVector3 position;
        VtVector3 target;
    };
    const Case cases[] = {
        {{0.5, 0, 0.2}, {0, 0, 0.1}},   // in the medium, across the ray
        {{3, 0, -2}, {0, 0, 0}},        // outside of it
        {{0.3, 0, 6}, {0.1, 0, 0}},     // the camera is in its cone
        {{0, 0, -3}, {0, 0, 0}},        // along the ray, towards the camera
        {{0, 200, 0.5}, {0, 0, 0.5}},   // far away: all of the ray is in the cone
        {{0.5, 0.2, 0}, {0.5, 0.2, 1}}, // past the ray
        {{0.5, 0, 0}, {1, 0, 0}},       // away from it
    };
    for (const auto &[position, target] : cases) {
        Scene scene;
        List settings("max_depth", 1);
        scene.NewImager("settings", settings);
        List camera("height", 1e-4, "position", VtVector3(0, 0, 4), "target", VtVector3(0, 0, 0));
        scene.NewCamera("orthographic", camera);
        const auto minus = [](const VtVector3 &a, const VtVector3 &b) {
            return VtVector3(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
        };
        const auto dot = [](const VtVector3 &a, const VtVector3 &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; };
        const double distance = std::sqrt(dot(position, position));
        const double intensity = 4 * M_PI * std::max(1.0, distance * distance);
        // Further ones that reach nothing of it, which take no samples.
        for (int i = 0; i < 20; ++i)
            scene.light("spot", "position", VtVector3(2, 0.1 * i, 0), "target", VtVector3(4, 0, 0), "intensity",
                        intensity, "cutoff_angle", cutoff);
        scene.light("spot", "position", position, "target", target, "intensity", intensity, "cutoff_angle", cutoff,
                    "beam_width", cutoff);
        begin_boundary(scene);
        scene.InteriorBegin(new_interior(scene, "sigma_a", absorption, "sigma_s", scattering));
        scene.AddObject(scene.object("sphere", "radius", 1.0));
        scene.InteriorEnd();
        scene.MaterialEnd();
        const VtVector3 axis = minus(target, position);
        double expected = 0;
        constexpr int steps = 10000; // the midpoint rule along the ray
        for (int i = 0; i < steps; ++i) {
            const VtVector3 point(0, 0, -1 + 2 * (i + 0.5) / steps);
            const VtVector3 from_light = minus(point, position);
            const double squared_distance = dot(from_light, from_light);
            const double cosine = dot(axis, from_light) / std::sqrt(dot(axis, axis) * squared_distance);
            if (cosine < std::cos(cutoff * M_PI / 180))
                continue;
            // From the point to the light, or to where that way leaves the ball: |p - s w| = 1.
            const double along = dot(point, from_light) / std::sqrt(squared_distance);
            const double to_edge = along + std::sqrt(along * along + 1 - dot(point, point));
            const double way = 1 - point[2] + std::min(to_edge, std::sqrt(squared_distance));
            expected += intensity / (4 * M_PI) * scattering * std::exp(-(absorption + scattering) * way) /
                        squared_distance * 2 / steps;
        }
        // As of a point light, only the transmittance varies.
        const double tolerance = 0.005 * expected;
        EXPECT_NEAR(scene.render(8, 8, 16).mean(), expected, tolerance) << position[0] << ' ' << position[2];
    }
}

TEST(Media, EveryRayOfAnOrthographicCameraHasItsOwn) {
    // The right half of the picture starts in an absorbing box, the left half outside of it.
    Scene scene;
    List camera("height", 2.0);
    scene.NewCamera("orthographic", camera);
    scene.light("environment", "radiance", 1.0);
    begin_boundary(scene);
    scene.InteriorBegin(new_interior(scene, "sigma_a", 100.0));
    scene.AddObject(scene.object("box", "min", VtVector3(0, -2, -2), "max", VtVector3(2, 2, 2)));
    scene.InteriorEnd();
    scene.MaterialEnd();
    const scripted::Pixels pixels = scene.render(8, 8, 4);
    for (int y = 0; y < 8; ++y) {
        EXPECT_EQ(pixels.at(1, y)[1], 1);
        EXPECT_EQ(pixels.at(6, y)[1], 0);
    }
}

TEST(Media, RibbonsHaveNoInside) {
    Scene scene;
    scripted::Points points;
    scripted::fill(points, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    const VtLong ribbon = scene.object("curves", "points", points);
    scene.InteriorBegin(new_interior(scene));
    EXPECT_EQ(scripted::errors_of([&] { scene.AddObject(ribbon); }),
              "vantor: addObject: ribbons have no inside, so that the interior has no effect on them (tubes have "
              "one)\n");
    scene.InteriorEnd();
}

TEST(Media, WrongParametersAreReported) {
    Scene scene;
    EXPECT_EQ(scripted::errors_of([&] { new_interior(scene, "g", 1.0); }),
              "vantor: newInterior \"homogeneous\": item 1: parameter \"g\" is out of range: expected -0.99 to 0.99, "
              "got 1\n");
    EXPECT_EQ(scripted::errors_of([&] { new_interior(scene, "albedo", 0.5); }),
              "vantor: newInterior \"homogeneous\": item 1: parameter \"albedo\" has no effect without \"sigma_t\"\n");
}

} // namespace
