// Patterns: their values by closed form, and how they nest.
#include "libvantor/patterns/pattern.h"

#include "tests/libvantor/scripted_scene.h"

#include <random>

namespace {

using namespace vantor;
using scripted::errors_of;
using scripted::List;
using scripted::Scene;

constexpr ColorOrPattern black{{0, 0, 0}};
constexpr ColorOrPattern white{{1, 1, 1}};
constexpr Vec3 one{1, 1, 1};

PatternPoint at_uv(float u, float v) { return {{u, v}, {}}; }
PatternPoint at_point(Vec3 p) { return {{}, p}; }

void expect_near(Color found, Color wanted, float tolerance = 1e-6f) {
    EXPECT_NEAR(found.r, wanted.r, tolerance);
    EXPECT_NEAR(found.g, wanted.g, tolerance);
    EXPECT_NEAR(found.b, wanted.b, tolerance);
}

TEST(Patterns, CheckerTakesTurnsInTheTextureCoordinates) {
    const Checker checker{black, white, PatternSpace::Uv, {2, 4, 1}};
    for (int i = -6; i < 6; ++i)
        for (int j = -6; j < 6; ++j) {
            const float u = (static_cast<float>(i) + 0.3f) / 2;
            const float v = (static_cast<float>(j) + 0.8f) / 4;
            const float wanted = (i + j) % 2 == 0 ? 0.0f : 1.0f;
            EXPECT_EQ(checker.evaluate({{u, v}, {99, 99, 99}}).g, wanted) << i << " " << j;
        }
}

TEST(Patterns, CheckerTakesTurnsInSpace) {
    const Checker checker{black, white, PatternSpace::Object, one};
    for (int i = -2; i < 2; ++i)
        for (int j = -2; j < 2; ++j)
            for (int k = -2; k < 2; ++k) {
                const Vec3 p{static_cast<float>(i) + 0.5f, static_cast<float>(j) + 0.1f, static_cast<float>(k) + 0.9f};
                EXPECT_EQ(checker.evaluate({{99, 99}, p}).r, (i + j + k) % 2 == 0 ? 0.0f : 1.0f);
            }
}

TEST(Patterns, CheckerHasAColorEvenVeryFarAway) {
    const Checker checker{black, white, PatternSpace::Object, {1e9f, 1e9f, 1e9f}};
    const float far_away = checker.evaluate(at_point({1e9f, -1e9f, 12345678})).r;
    EXPECT_TRUE(far_away == 0 || far_away == 1);
}

TEST(Patterns, GradientIsLinearBetweenItsStopsAndConstantBeyond) {
    const Gradient gradient{
        {{0, {1, 0, 0}}, {0.25f, {0, 1, 0}}, {1, {0, 0, 4}}}, PatternSpace::Object, {1, 0, 0}, {0, 2, 0}};
    // The position is y / 2, wherever x and z are.
    expect_near(gradient.evaluate(at_point({7, -1, 3})), {1, 0, 0});
    expect_near(gradient.evaluate(at_point({7, 0.25f, 3})), {0.5f, 0.5f, 0});
    expect_near(gradient.evaluate(at_point({0, 0.5f, 0})), {0, 1, 0});
    expect_near(gradient.evaluate(at_point({0, 0.875f, 0})), {0, 0.75f, 1});
    expect_near(gradient.evaluate(at_point({0, 9, 0})), {0, 0, 4});
}

TEST(Patterns, GradientJumpsWhereTwoStopsShareAPosition) {
    const Gradient gradient{
        {{0, {0, 0, 0}}, {0.5f, {1, 1, 1}}, {0.5f, {3, 3, 3}}, {1, {3, 3, 3}}}, PatternSpace::Uv, {0, 0, 0}, {1, 0, 0}};
    expect_near(gradient.evaluate(at_uv(0.4999f, 0)), {0.9998f, 0.9998f, 0.9998f}, 1e-4f);
    expect_near(gradient.evaluate(at_uv(0.5f, 0)), {3, 3, 3});
}

TEST(Noise, IsZeroOnTheLattice) {
    for (const float x : {-3.0f, 0.0f, 8.0f, 1e9f})
        for (const float y : {-70000.0f, 1.0f})
            for (const float z : {0.0f, 65535.0f})
                EXPECT_EQ(gradient_noise({x, y, z}), 0.0f);
}

// The gradient at a lattice point, by differences: the slope's error is at most 10 h^2, that of the fade curve.
Vec3 gradient_at(Vec3 p) {
    constexpr float h = 1.0f / 64;
    const auto slope = [&](Vec3 step) { return (gradient_noise(p + step) - gradient_noise(p - step)) / (2 * h); };
    return {slope({h, 0, 0}), slope({0, h, 0}), slope({0, 0, h})};
}

TEST(Noise, GradientsAreTheTwelveDirectionsToTheEdgesOfACube) {
    std::set<std::array<int, 3>> found;
    for (int i = 0; i < 200; ++i) {
        const Vec3 g = gradient_at({static_cast<float>(i), static_cast<float>(7 * i % 11), 5});
        const std::array<int, 3> direction{static_cast<int>(std::lround(g.x)), static_cast<int>(std::lround(g.y)),
                                           static_cast<int>(std::lround(g.z))};
        EXPECT_NEAR(g.x, static_cast<float>(direction[0]), 5e-3f);
        EXPECT_NEAR(g.y, static_cast<float>(direction[1]), 5e-3f);
        EXPECT_NEAR(g.z, static_cast<float>(direction[2]), 5e-3f);
        EXPECT_EQ(std::abs(direction[0]) + std::abs(direction[1]) + std::abs(direction[2]), 2);
        found.insert(direction);
    }
    EXPECT_EQ(found.size(), 12u);
}

TEST(Noise, FollowsTheFadeCurveAlongAnEdgeOfTheLattice) {
    for (int i = 0; i < 20; ++i) {
        const Vec3 p{static_cast<float>(i), 3, -2};
        const float slope0 = std::round(gradient_at(p).x);
        const float slope1 = std::round(gradient_at(p + Vec3{1, 0, 0}).x);
        for (const float t : {0.2f, 0.5f, 0.9f}) {
            const float fade = 6 * std::pow(t, 5.0f) - 15 * std::pow(t, 4.0f) + 10 * std::pow(t, 3.0f);
            const float wanted = slope0 * t * (1 - fade) + slope1 * (t - 1) * fade;
            EXPECT_NEAR(gradient_noise(p + Vec3{t, 0, 0}), wanted, 1e-5f);
        }
    }
}

TEST(Noise, HasMeanZeroStaysInItsRangeAndIsContinuous) {
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> anywhere(-500, 500);
    constexpr int count = 100000;
    double sum = 0, squares = 0;
    for (int i = 0; i < count; ++i) {
        const Vec3 p{anywhere(engine), anywhere(engine), anywhere(engine)};
        const float n = gradient_noise(p);
        sum += n;
        squares += n * n;
        EXPECT_LE(std::fabs(n), 1.0f);
        // A step of 1e-3 changes the noise by the slope, which is below 4, times the step; also across cells.
        EXPECT_NEAR(n, gradient_noise(p + Vec3{1e-3f, 0, 0}), 4e-3f);
    }
    // Its standard deviation is near 0.25, so the mean's standard error is 0.0008.
    EXPECT_NEAR(sum / count, 0, 0.004);
    EXPECT_NEAR(std::sqrt(squares / count), 0.26, 0.03);
}

TEST(Noise, OctavesAddUp) {
    const Noise noise{black, white, PatternSpace::Object, {2, 2, 2}, 3, 3, 0.25f};
    const Vec3 p{0.3f, 1.7f, -2.2f};
    const float wanted =
        (gradient_noise(p) + 0.25f * gradient_noise(p * 3) + 0.0625f * gradient_noise(p * 9)) / 1.3125f;
    EXPECT_NEAR(noise.value(p), wanted, 1e-5f);
    const Color color = noise.evaluate(at_point(p * 0.5f));
    EXPECT_NEAR(color.r, 0.5f + 0.5f * wanted, 1e-5f);
}

TEST(Patterns, MixHasThreeModes) {
    const ColorOrPattern a{{0.2f, 0.4f, 0.8f}};
    const ColorOrPattern b{{0.5f, 1, 2}};
    expect_near(Mix{a, b, {0.25f}, Mix::Mode::Mix}.evaluate({}), {0.275f, 0.55f, 1.1f});
    expect_near(Mix{a, b, {0.25f}, Mix::Mode::Multiply}.evaluate({}), {0.175f, 0.4f, 1});
    expect_near(Mix{a, b, {0.25f}, Mix::Mode::Add}.evaluate({}), {0.325f, 0.65f, 1.3f});
}

TEST(Patterns, Nest) {
    const Pattern ramp{Gradient{{{0, {0, 0, 0}}, {1, {1, 1, 1}}}, PatternSpace::Uv, {0, 0, 0}, {0, 1, 0}}};
    const Pattern checker{Checker{{{1, 0, 0}}, {{}, &ramp}, PatternSpace::Uv, one}};
    const Pattern mix{Mix{{{}, &checker}, {{0, 0, 1}}, {0, &ramp}, Mix::Mode::Mix}};
    expect_near(evaluate(checker, at_uv(0.5f, 0.25f)), {1, 0, 0});
    expect_near(evaluate(checker, at_uv(1.5f, 0.25f)), {0.25f, 0.25f, 0.25f});
    expect_near(evaluate(mix, at_uv(0.5f, 0.25f)), {0.75f, 0, 0.25f});
    expect_near(evaluate(mix, at_uv(1.5f, 0.25f)), {0.1875f, 0.1875f, 0.4375f});
}

// Through the scene interface.

VtLong pattern(Scene &scene, const char *type, List list) { return scene.NewPattern(type, list); }

TEST(Patterns, AMadeOfTooManyIsReported) {
    Scene scene;
    VtLong last = pattern(scene, "checker", List());
    // Each mix uses the one before twice: 1, 3, 7 ... 511 patterns, and then 1023.
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(errors_of([&] {
                      last = pattern(scene, "mix", List("a", static_cast<int>(last), "b", static_cast<int>(last)));
                  }),
                  "");
    EXPECT_EQ(errors_of([&] { pattern(scene, "mix", List("a", static_cast<int>(last), "b", static_cast<int>(last))); }),
              "vantor: newPattern \"mix\": the pattern is made of 1023 patterns, counting each use (up to 1000 are "
              "possible); it is left out\n");
}

TEST(Patterns, AnIntegerIsAPatternsId) {
    Scene scene;
    scene.camera({0, 0, 1}, {0, 0, 0}, 60);
    EXPECT_EQ(errors_of([&] { pattern(scene, "checker", List("a", 1)); }),
              "vantor: newPattern \"checker\": item 1: parameter \"a\" is 1, but id 1 is a camera (expected the id of "
              "a pattern; a number has a decimal point: 1.0)\n");
    EXPECT_EQ(errors_of([&] { pattern(scene, "mix", List("amount", 0)); }),
              "vantor: newPattern \"mix\": item 1: parameter \"amount\" is 0, but no entity has the id 0 (expected the "
              "id of a "
              "pattern; a number has a decimal point: 0.0)\n");
    EXPECT_EQ(errors_of([&] { pattern(scene, "mix", List("a", 2, "amount", 0.0)); }), "");
}

TEST(Patterns, GradientsThatCannotBeUsedAreReported) {
    Scene scene;
    scripted::Points none, colors;
    scripted::fill(colors, {{0, 0, 0}, {1, 1, 1}});
    VtInstanceArray<double> falling;
    falling.Add(1.0);
    falling.Add(0.0);
    EXPECT_EQ(errors_of([&] { pattern(scene, "gradient", List("colors", none)); }),
              "vantor: newPattern \"gradient\": item 1: parameter \"colors\" has no or unusable elements (expected "
              "colours, 0 or "
              "more)\n");
    EXPECT_EQ(errors_of([&] { pattern(scene, "gradient", List("colors", colors, "positions", falling)); }),
              "vantor: newPattern \"gradient\": item 3: parameter \"positions\" is left out (expected 2 numbers, one "
              "for each colour, none below the one before)\n");
}

} // namespace
