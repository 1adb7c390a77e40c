// The choice among lights: probabilities, and that none is left out that brings anything.
#include "libvantor/lights/bvh_light_builder.h"
#include "libvantor/lights/emitters.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <set>

namespace {

using namespace vantor;

class Random {
  public:
    explicit Random(unsigned seed) : engine(seed) {}
    double one() { return engine() * 0x1p-32; }
    float between(float low, float high) { return low + (high - low) * static_cast<float>(one()); }
    Point2f two() {
        const float u = sobol::unit_float(static_cast<std::uint32_t>(engine()));
        return {u, sobol::unit_float(static_cast<std::uint32_t>(engine()))};
    }
    Vec3 direction() {
        const float z = between(-1, 1);
        const float turn = between(0, 2 * pi);
        const float r = std::sqrt(1 - z * z);
        return {r * std::cos(turn), r * std::sin(turn), z};
    }
    Vec3 point(float size) { return {between(-size, size), between(-size, size), between(-size, size)}; }

  private:
    std::mt19937 engine;
};

/// Lights with their sampler.
struct Lights {
    std::vector<Light> lights;
    BvhLightSampler sampler;

    explicit Lights(std::vector<Light> all) : lights(std::move(all)) {
        std::vector<BvhLightSampler::FiniteLight> finite;
        std::vector<BvhLightSampler::InfiniteLight> infinite;
        for (std::uint32_t i = 0; i < lights.size(); ++i)
            std::visit(
                [&](const auto &light) {
                    if constexpr (std::remove_cvref_t<decltype(light)>::is_infinite)
                        infinite.push_back({light.bounds(), i});
                    else
                        finite.push_back({light.bounds(), i});
                },
                lights[i]);
        sampler = BvhLightSampler(finite, infinite, lights.size());
    }

    // What one sample of a light brings to a surface, or with no normal to a point; 0 if it brings nothing.
    double brought(std::uint32_t light, const LightSampleContext &reference, Point2f numbers) const {
        return std::visit(
            [&]<class Kind>(const Kind &kind) -> double {
                EmissionSample sample;
                if (!kind.sample(reference.point, numbers, sample))
                    return 0;
                const bool has_normal = dot(reference.normal, reference.normal) > 0;
                const double cosine = has_normal ? std::max(0.0f, dot(sample.to_light, reference.normal)) : 1.0f;
                const double radiance = luminance(sample.radiance) * cosine;
                return Kind::is_delta ? radiance : radiance / sample.pdf;
            },
            lights[light]);
    }
};

// So many finite lights of all types, within so far from a place.
std::vector<Light> mixed(Random &random, int count, float size, Vec3 place = {}) {
    std::vector<Light> lights;
    for (int i = 0; i < count; ++i) {
        const Vec3 at = place + random.point(size);
        const Color color{random.between(0.1f, 1), random.between(0.1f, 1), random.between(0.1f, 1)};
        const Vec3 a = random.point(0.1f * size);
        const Vec3 b = random.point(0.1f * size);
        switch (i % 6) {
        case 0:
            lights.push_back(flat_emitter(Affine(), at, at + a, at + b, FlatEmitter::Outline::Parallelogram, color));
            break;
        case 1:
            lights.push_back(flat_emitter(Affine(), at, at + a, at + b, FlatEmitter::Outline::Triangle, color));
            break;
        case 2: {
            const Frame frame(random.direction());
            lights.push_back(FlatEmitter{at, frame.x * (0.1f * size), frame.y * (0.1f * size), frame.z,
                                         pi * 0.01f * size * size, FlatEmitter::Outline::Ring, 0, color});
            break;
        }
        case 3: {
            VtTransform transform = identity();
            for (int j = 0; j < 3; ++j)
                transform[j][j] = 0.05 * static_cast<double>(size);
            transform[3] = {at.x, at.y, at.z, 1.0};
            lights.push_back(SphereEmitter{std::make_shared<const Affine>(to_float(transform)), color});
            break;
        }
        case 4:
            lights.push_back(PointLight{at, color});
            break;
        default: {
            const float cutoff = random.between(0.001f, 2);
            lights.push_back(SpotLight{at, random.direction(), color, cutoff * random.between(0, 1), cutoff});
        }
        }
    }
    return lights;
}

std::vector<Light> with_sky(std::vector<Light> lights) {
    const Raster sky(4, 3, std::vector<Color>(12, {0.3f, 0.4f, 0.5f}));
    lights.insert(lights.begin() + static_cast<std::ptrdiff_t>(lights.size() / 2),
                  EnvironmentLight{std::make_shared<const Environment>(sky, Color{1, 1, 1}, Affine(), Interrupt())});
    lights.push_back(DistantDiskLight{normalized({1, 2, 3}), 1e-5f, {3, 2, 1}});
    lights.push_back(DistantLight{normalized({-1, 2, 3}), {1, 2, 1}});
    return lights;
}

TEST(LightSampler, ProbabilitiesAddUpAndAreThoseOfTheSamples) {
    Random random(1);
    for (const int count : {2, 7, 8, 9, 60, 1000})
        for (const bool has_sky : {false, true}) {
            const Lights all(has_sky ? with_sky(mixed(random, count, 3)) : mixed(random, count, 3));
            for (int i = 0; i < 20; ++i) {
                LightSampleContext reference(random.point(4), i % 3 == 0 ? Vec3() : random.direction());
                reference.has_bsdf_samples = i % 2 == 0;
                double sum = 0;
                for (std::uint32_t light = 0; light < all.lights.size(); ++light) {
                    const float pmf = all.sampler.pmf(reference, light);
                    ASSERT_GE(pmf, 0);
                    sum += pmf;
                }
                EXPECT_LT(sum, 1 + 1e-5);
                // Where all are weighed at once, nothing is promised that is not kept.
                if (count <= 8 && sum > 0) {
                    EXPECT_NEAR(sum, 1, 1e-5) << count;
                }
                int none = 0;
                constexpr int draws = 2000;
                std::vector<int> counts(all.lights.size());
                for (int j = 0; j < draws; ++j) {
                    const LightChoice choice =
                        all.sampler.sample(reference, j == draws - 1 ? 1 - 0x1p-32 : 1.0 * j / draws);
                    if (!(choice.pmf > 0)) {
                        ++none;
                        continue;
                    }
                    ASSERT_LT(choice.light, all.lights.size());
                    ASSERT_NEAR(choice.pmf, all.sampler.pmf(reference, choice.light), 1e-5 * choice.pmf);
                    ++counts[choice.light];
                }
                EXPECT_NEAR(1.0 * none / draws, 1 - sum, 0.02);
                // Numbers are spread evenly, and each light has one stretch of them.
                for (std::uint32_t light = 0; light < counts.size(); ++light)
                    ASSERT_NEAR(counts[light], draws * all.sampler.pmf(reference, light), 2) << light;
            }
        }
}

// Whatever a light brings anywhere, it is chosen there at times: near, far, inside the cluster, on the lights
// themselves, in scenes of all sizes and away from the origin.
TEST(LightSampler, NoLightIsLeftOutThatBringsAnything) {
    Random random(2);
    int brought = 0;
    for (const float size : {1e-4f, 1.0f, 1e5f})
        for (const float away : {0.0f, 30.0f}) {
            const Vec3 place = Vec3{1, -2, 0.5f} * (size * away);
            for (const int count : {5, 300}) {
                const Lights all(with_sky(mixed(random, count, size, place)));
                for (int i = 0; i < 300; ++i) {
                    const auto some = static_cast<std::uint32_t>(random.one() * static_cast<double>(all.lights.size()));
                    LightSampleContext reference(place + random.point(size * (i % 4 == 0 ? 20.0f : 1.5f)),
                                                 i % 3 == 0 ? Vec3() : random.direction());
                    // On a light, where the others are at its edge.
                    if (const auto *flat = std::get_if<FlatEmitter>(&all.lights[some]); flat && i % 2 == 0)
                        reference = {flat->corner + flat->edge_u * random.between(0, 1), flat->normal};
                    for (std::uint32_t light = 0; light < all.lights.size(); ++light) {
                        double most = 0;
                        for (int j = 0; j < 3; ++j)
                            most = std::max(most, all.brought(light, reference, random.two()));
                        if (most > 0) {
                            ++brought;
                            ASSERT_GT(all.sampler.pmf(reference, light), 0)
                                << light << " of type " << all.lights[light].index() << " brings " << most << ", size "
                                << size << ", away " << away;
                        }
                    }
                }
            }
        }
    EXPECT_GT(brought, 100000);
}

// The mean over choices is the sum over all lights: each weighed by its own probability.
TEST(LightSampler, TheEstimateIsTheSumOverAllLights) {
    Random random(3);
    const Lights all(with_sky(mixed(random, 500, 3)));
    for (int i = 0; i < 6; ++i) {
        const LightSampleContext reference(random.point(3), i % 2 == 0 ? random.direction() : Vec3());
        // Each light always by the same point of its own, so that only the choice is random.
        std::vector<double> brought;
        for (std::uint32_t light = 0; light < all.lights.size(); ++light)
            brought.push_back(all.brought(light, reference, random.two()));
        const double expected = std::accumulate(brought.begin(), brought.end(), 0.0);
        double sum = 0;
        double squares = 0;
        constexpr int draws = 100000;
        for (int j = 0; j < draws; ++j) {
            const LightChoice choice = all.sampler.sample(reference, random.one());
            const double value = choice.pmf > 0 ? brought[choice.light] / choice.pmf : 0.0;
            sum += value / draws;
            squares += value * value / draws;
        }
        const double error = std::sqrt((squares - sum * sum) / draws);
        EXPECT_NEAR(sum, expected, 4 * error + 1e-4 * expected) << i;
        EXPECT_LT(error, 0.01 * expected);
    }
}

TEST(LightSampler, WhatCannotBringAnythingIsNotAsked) {
    const Color white{1, 1, 1};
    const Lights all({SpotLight{{0, 5, 0}, {0, -1, 0}, white, 0.01f, 0.02f},
                      flat_emitter(Affine(), {-1, 3, -1}, {1, 3, -1}, {-1, 3, 1}, FlatEmitter::Outline::Parallelogram,
                                   white), // down
                      PointLight{{0, -3, 0}, white}});
    const LightSampleContext up({0, 0, 0}, {0, 1, 0});
    EXPECT_GT(all.sampler.pmf(up, 0), 0);
    EXPECT_GT(all.sampler.pmf(up, 1), 0);
    EXPECT_EQ(all.sampler.pmf(up, 2), 0);                                       // below the surface
    EXPECT_EQ(all.sampler.pmf(LightSampleContext({3, 0, 0}, {0, 1, 0}), 0), 0); // beside the cone
    EXPECT_EQ(all.sampler.pmf(LightSampleContext({0, 4, 0}, {0, 1, 0}), 1), 0); // behind the front
    EXPECT_GT(all.sampler.pmf(LightSampleContext({0, 0, 0}), 2), 0);            // in a medium
    const LightSampleContext nowhere({0, 6, 0}, {0, 1, 0});
    EXPECT_EQ(all.sampler.sample(nowhere, 0.5).pmf, 0);
}

// Each light has about the share of the choice that it has of the light.
TEST(LightSampler, TheShareIsWhatALightBrings) {
    const Color white{1, 1, 1};
    const Raster dim(1, 1, {{1, 1, 1}});
    const auto sky = [&](float radiance) {
        const Color color{radiance, radiance, radiance};
        return EnvironmentLight{std::make_shared<const Environment>(dim, color, Affine(), Interrupt())};
    };
    const LightSampleContext up({0, 0, 0}, {0, 1, 0});
    const Lights lamp({PointLight{{0, 1, 0}, white}, sky(1e-4f)});
    EXPECT_NEAR(lamp.sampler.pmf(up, 0), 0.95, 1e-5);
    EXPECT_NEAR(Lights({PointLight{{0, 1, 0}, white}, sky(1 / pi)}).sampler.pmf(up, 0), 0.5, 1e-4);
    EXPECT_NEAR(Lights({PointLight{{0, 1, 0}, white}, sky(10)}).sampler.pmf(up, 0), 0.05, 1e-5);
    const Lights two({PointLight{{0, 1, 0}, white}, PointLight{{0, 3, 0}, white}});
    EXPECT_NEAR(two.sampler.pmf(up, 0), 0.9, 1e-5);
    const Lights sun_and_sky({DistantLight{{0, 0.6f, 0.8f}, white}, sky(1 / pi)});
    EXPECT_NEAR(sun_and_sky.sampler.pmf(up, 0), 0.1 + 0.8 * 0.6 / 1.6, 1e-4);
    EXPECT_NEAR(sun_and_sky.sampler.pmf(LightSampleContext({0, 0, 0}, {0, -1, 0}), 0), 0.1, 1e-4);
}

TEST(LightSampler, AnEvenSkyIsLeftToBsdfSamples) {
    const Color white{1, 1, 1};
    const auto environment = [](const Raster &picture) {
        return EnvironmentLight{std::make_shared<const Environment>(picture, Color{1, 1, 1}, Affine(), Interrupt())};
    };
    const EnvironmentLight even = environment(Raster(1, 1, {{1, 1, 1}}));
    std::vector<Color> pixels(64 * 32, {0.1f, 0.1f, 0.1f});
    pixels[12 * 64 + 20] = {5000, 5000, 5000};
    const EnvironmentLight with_sun = environment(Raster(64, 32, std::move(pixels)));
    LightSampleContext up({0, 0, 0}, {0, 1, 0});
    up.has_bsdf_samples = true;
    const auto chance = [&](std::vector<Light> lights) { return Lights(std::move(lights)).sampler.pmf(up, 0); };
    const DistantLight sun{{0, 0.6f, 0.8f}, white};
    EXPECT_LT(chance({even, sun}), 0.1);
    EXPECT_GT(chance({even, sun}), 0.01); // never none
    EXPECT_GT(chance({with_sun, sun}), 0.3);
    EXPECT_LE(chance({even, PointLight{{0, 1, 0}, white}}), 0.1);
    EXPECT_EQ(chance({even}), 1);
    EXPECT_NEAR(chance({even, even}), 0.5, 1e-5);
    EXPECT_NEAR(chance({sun, sun}), 0.5, 1e-5);
}

TEST(LightSampler, OneLightIsCertainAndNoneIsNeverChosen) {
    const LightSampleContext reference({0, 0, 0});
    const Lights one({UnsampledEmitter{{1, 1, 1}}, PointLight{{0, 1, 0}, {1, 1, 1}}, PointLight{{1, 0, 0}, {0, 0, 0}},
                      PointLight{{1, 0, 0}, {INFINITY, 0, 0}}});
    EXPECT_EQ(one.sampler.sample(reference, 0).light, 1u);
    EXPECT_EQ(one.sampler.sample(reference, 0).pmf, 1);
    EXPECT_EQ(one.sampler.pmf(reference, 1), 1);
    EXPECT_EQ(one.sampler.pmf(reference, 0), 0);
    for (const double u : {0.0, 0.5, 1 - 0x1p-32}) {
        EXPECT_EQ(Lights({}).sampler.sample(reference, u).pmf, 0);
        EXPECT_EQ(Lights({UnsampledEmitter{{1, 1, 1}}}).sampler.sample(reference, u).pmf, 0);
    }
}

TEST(LightSampler, ARayChoosesByWhatALightBringsAlongIt) {
    Random random(4);
    const Lights all(mixed(random, 200, 3));
    for (int i = 0; i < 10; ++i) {
        const LightSampleRay ray{{random.point(4), random.direction()}, i % 2 == 0 ? INFINITY : 2.0f};
        double sum = 0;
        for (std::uint32_t light = 0; light < all.lights.size(); ++light) {
            if (!std::holds_alternative<SpotLight>(all.lights[light])) {
                ASSERT_GT(all.sampler.pmf(ray, light), 0);
            }
            sum += all.sampler.pmf(ray, light);
        }
        EXPECT_LE(sum, 1 + 1e-4);
        for (double u = 0; u < 1; u += 0.01) {
            const LightChoice choice = all.sampler.sample(ray, u);
            ASSERT_TRUE(choice.pmf > 0 || sum < 1 - 1e-4);
            if (!(choice.pmf > 0))
                continue;
            ASSERT_NEAR(choice.pmf, all.sampler.pmf(ray, choice.light), 1e-5 * choice.pmf);
        }
    }
    // Twice as far, half as much: of an infinite ray both see the same angle.
    const Lights two({PointLight{{0, 1, 0}, {1, 1, 1}}, PointLight{{0, -2, 0}, {1, 1, 1}}});
    EXPECT_NEAR(two.sampler.pmf(LightSampleRay{{{-1000, 0, 0}, {1, 0, 0}}, INFINITY}, 0), 2 / 3.0, 1e-3);
}

/// Whether the spot lights the point, as its own samples tell.
bool is_lit(const SpotLight &spot, Vec3 point) {
    EmissionSample sample;
    return spot.sample(point, {}, sample);
}

/// Turns and moves whatever is made of it.
struct Pose {
    Frame frame;
    Vec3 origin;
    Vec3 direction(Vec3 of) const { return frame.world_from_local(of); }
    Vec3 point(Vec3 of) const { return origin + direction(of); }
};

// Of a spot at the origin that shines along +Z, up to 45 degrees.
TEST(SpotLight, APartOfARayIsLit) {
    const float height = static_cast<float>(1 - std::sqrt(0.5));
    struct Case {
        Vec3 from;
        Vec3 to;
        RayPart lit; // empty: none
    };
    const Case cases[] = {
        {{-5, 0, 2}, {1, 0, 0}, {3, 7}},                                // across
        {{-5, 0, 2}, {-1, 0, 0}, {}},                                   // away from it
        {{-5, 0, -2}, {1, 0, 0}, {}},                                   // behind it
        {{0.5f, 0, 2}, {1, 0, 0}, {0, 1.5f}},                           // from inside
        {{0, 0, -3}, {0, 0, 1}, {3, 100}},                              // along the axis
        {{0, 0, 4}, {0, 0, -1}, {0, 4}},                                // against it
        {{1, 0, 7}, {0, 0, -1}, {0, 6}},                                // beside the axis
        {{1, 0, -7}, {0, 0, 1}, {8, 100}},                              //
        {{-5, 4, 2}, {1, 0, 0}, {}},                                    // past it
        {{0, -2, 0}, normalized({0, 1, 0.5f}), {1.490712f, 4.472136f}}, // slanting
    };
    for (const Vec3 axis : {Vec3{0, 0, 1}, normalized({1, -2, 0.3f}), Vec3{0, -1, 0}})
        for (const Vec3 place : {Vec3{}, Vec3{1000, -200, 5000}}) {
            const Pose pose{Frame(axis), place};
            const SpotLight spot{place, axis, {1, 1, 1}, 0.5f * height, height};
            for (const Case &each : cases) {
                const RayPart part = spot.lit_part({pose.point(each.from), pose.direction(each.to)}, {0, 100});
                ASSERT_EQ(part.is_empty(), each.lit.is_empty());
                if (part.is_empty())
                    continue;
                const float tolerance = place.x > 0 ? 5e-3f : 1e-4f;
                EXPECT_NEAR(part.from, each.lit.from, tolerance);
                EXPECT_NEAR(part.to, each.lit.to, tolerance);
            }
            const SpotLight wide{place, axis, {1, 1, 1}, 0.5f, 1.2f};
            const RayPart part = wide.lit_part({pose.point({0, 0, 1}), axis}, {2, 7});
            EXPECT_EQ(part.from, 2);
            EXPECT_EQ(part.to, 7);
        }
}

TEST(LightSampler, ARayAsksASpotWhereAnyOfItIsLit) {
    Random random(7);
    for (const int count : {3, 100}) {
        std::vector<Light> spots;
        for (int i = 0; i < count; ++i) {
            const float cutoff = random.between(0.02f, 1.2f);
            const auto height = [](float angle) { return 2 * std::sin(0.5f * angle) * std::sin(0.5f * angle); };
            spots.push_back(SpotLight{
                random.point(3), random.direction(), {1, 1, 1}, height(random.between(0, cutoff)), height(cutoff)});
        }
        const Lights all(spots);
        int lit = 0;
        for (int i = 0; i < 100; ++i) {
            const LightSampleRay ray{{random.point(4), random.direction()}, i % 2 == 0 ? INFINITY : 3.0f};
            for (std::uint32_t light = 0; light < all.lights.size(); ++light) {
                const auto &spot = std::get<SpotLight>(all.lights[light]);
                const RayPart part = spot.lit_part(ray.ray, {0, ray.length});
                const float pmf = all.sampler.pmf(ray, light);
                // Beside what rounding may move, the part is where the light arrives.
                for (int j = 1; j < 100; ++j) {
                    const float distance = 0.03f * static_cast<float>(j);
                    if (std::fabs(distance - part.from) < 1e-3f || std::fabs(distance - part.to) < 1e-3f)
                        continue;
                    const bool is_within = !part.is_empty() && distance > part.from && distance < part.to;
                    const bool is_lit_there = is_lit(spot, ray.ray.origin + ray.ray.direction * distance);
                    ASSERT_EQ(is_lit_there, is_within);
                    lit += is_lit_there ? 1 : 0;
                    if (is_lit_there) {
                        ASSERT_GT(pmf, 0);
                    }
                }
            }
        }
        EXPECT_GT(lit, 100);
    }
}

// A mesh of a million triangles: few nodes, and any of its lights can be chosen.
TEST(LightSampler, MillionsOfLightsTakeFewNodes) {
    constexpr std::uint32_t side = 1000;
    std::vector<BvhLightSampler::FiniteLight> lights;
    lights.reserve(side * side);
    for (std::uint32_t i = 0; i < side * side; ++i) {
        const Vec3 at{static_cast<float>(i % side), static_cast<float>(i / side), 0.01f * static_cast<float>(i % 7)};
        lights.push_back({{at, {0.5f, 0.5f, 0}, {0, 0, 1}, 1, 0, 1}, i});
    }
    std::vector<BvhLightSampler::FiniteLight> copy = lights;
    EXPECT_LT(build_light_nodes(copy).size(), side * side / 3);
    const BvhLightSampler sampler(lights, {}, side * side);
    Random random(5);
    const LightSampleContext reference({300, 300, 20}, {0, 0, -1});
    std::set<std::uint32_t> chosen;
    for (int i = 0; i < 2000; ++i) {
        const auto light = static_cast<std::uint32_t>(random.one() * side * side);
        ASSERT_GT(sampler.pmf(reference, light), 0);
        const LightChoice choice = sampler.sample(reference, random.one());
        ASSERT_NEAR(choice.pmf, sampler.pmf(reference, choice.light), 1e-4 * choice.pmf);
        chosen.insert(choice.light);
    }
    EXPECT_GT(chosen.size(), 1500u);
}

// Lights in one place, which no split by place divides; and some whose places are as far apart as floats allow.
TEST(LightSampler, OddPlacesDivideSomehow) {
    for (const bool is_one_place : {false, true}) {
        std::vector<BvhLightSampler::FiniteLight> lights;
        for (std::uint32_t i = 0; i < 200; ++i) {
            const float x = is_one_place ? 5 : std::ldexp(1.0f, static_cast<int>(i) / 2 - 60);
            const Vec3 axis = i % 2 == 0 ? Vec3{0, 0, 1} : Vec3{0, 0, -1};
            lights.push_back({{{x, 0, 0}, {}, axis, 1, 0, 1}, i});
        }
        const BvhLightSampler sampler(lights, {}, 200);
        const LightSampleContext above({5, 0, 3});
        double sum = 0;
        for (std::uint32_t i = 0; i < 200; ++i) {
            const float pmf = sampler.pmf(above, i);
            if (i % 2 == 0) {
                EXPECT_GT(pmf, 0) << i;
            }
            sum += pmf;
        }
        EXPECT_LT(sum, 1 + 1e-4);
        EXPECT_GT(sum, is_one_place ? 1 - 1e-4 : 0.3);
    }
}

} // namespace
