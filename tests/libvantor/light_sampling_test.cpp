// Sampling of every type of light against its pdf and its radiance; the choice among lights; the emitters of shapes.
#include "libvantor/lights/emitters.h"
#include "libvantor/lights/power_light_sampler.h"

#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace {

using namespace vantor;

class Numbers {
  public:
    float one() { return sobol::unit_float(static_cast<std::uint32_t>(random())); }
    Point2f two() {
        const float u = one();
        return {u, one()};
    }

  private:
    std::mt19937 random{1};
};

// Mirrors, stretches, turns and moves.
VtTransform odd_transform() {
    VtTransform transform = identity();
    transform[0][0] = 0;
    transform[0][1] = 1.5;
    transform[1][0] = 0.7;
    transform[1][1] = 0.2;
    transform[2][0] = 0.3;
    transform[2][2] = 0.9;
    transform[3] = {0.2, 0.3, -2, 1.0};
    return transform;
}

Raster patchwork() {
    std::vector<Color> colors;
    for (int i = 0; i < 35; ++i)
        colors.push_back({static_cast<float>(i % 4), static_cast<float>(7 * i % 11), 0.5f});
    return {7, 5, colors};
}

struct Case {
    const char *name;
    Light light;
};

// One or more of each type, as the point (0, 0, 0) sees them: neither behind it nor all around.
std::vector<Case> cases() {
    const Affine map = to_float(odd_transform());
    const Color color{1, 2, 3};
    const Vec3 a{-0.5f, -0.4f, 0};
    const Vec3 b{0.6f, -0.3f, 0};
    const Vec3 d{-0.2f, 0.8f, 0.1f};
    const Disk ring{CanonicalMap({0, 0, 0}, {0.1, -0.2, 1}, 0.7), 0.4};
    return {
        {"parallelogram", flat_emitter(map, a, b, d, FlatEmitter::Outline::Parallelogram, color)},
        {"triangle", flat_emitter(map, a, b, d, FlatEmitter::Outline::Triangle, color)},
        {"ring", disk_emitter(map, ring, color)},
        {"ellipsoid", SphereEmitter{std::make_shared<const Affine>(map), color}},
        {"unsampled", UnsampledEmitter{color}},
        {"point", PointLight{{1, 2, 2}, color}},
        {"spot", SpotLight{{1, 2, 2}, normalized({-1, -2, -1.5f}), color, 0.01f, 0.2f}},
        {"distant", DistantLight{{0, 0.6f, 0.8f}, color}},
        {"distant disk", DistantDiskLight{{0, 0.6f, 0.8f}, 0.1f, color}},
        {"narrow disk", DistantDiskLight{{0, 0.6f, 0.8f}, 1e-5f, color}},
        {"environment", EnvironmentLight{std::make_shared<const Environment>(patchwork(), Color{1, 1, 1},
                                                                             to_float(identity()), Interrupt())}},
    };
}

// Where a ray from the origin meets the front of an emitter; nothing if it does not.
std::optional<Vec3> met(const FlatEmitter &emitter, Vec3 direction) {
    const float cosine = -dot(direction, emitter.normal);
    if (!(cosine > 0))
        return {};
    const Vec3 point = direction * (-dot(emitter.corner, emitter.normal) / cosine);
    const Vec3 from = point - emitter.corner;
    const Vec3 n = cross(emitter.edge_u, emitter.edge_v);
    const float u = dot(cross(from, emitter.edge_v), n) / dot(n, n);
    const float v = dot(cross(emitter.edge_u, from), n) / dot(n, n);
    const float square = u * u + v * v;
    const bool is_inside =
        emitter.outline == FlatEmitter::Outline::Ring
            ? square <= 1 && square >= emitter.squared_hole
            : u >= 0 && v >= 0 && (emitter.outline == FlatEmitter::Outline::Triangle ? u + v <= 1 : u <= 1 && v <= 1);
    return is_inside && dot(point, direction) > 0 ? std::optional(point) : std::nullopt;
}
std::optional<Vec3> met(const SphereEmitter &emitter, Vec3 direction) {
    const Vec3 from = emitter.world_from_unit->point_back({0, 0, 0});
    const Vec3 along = emitter.world_from_unit->inverse(direction);
    const float a = dot(along, along);
    const float b = dot(from, along);
    const float root = b * b - a * (dot(from, from) - 1);
    if (!(root >= 0 && b < 0))
        return {};
    return direction * ((-b - std::sqrt(root)) / a);
}

// What a ray from the origin finds of a light that has an extent.
template <class Kind> SeenLight seen(const Kind &light, Vec3 direction) {
    if constexpr (Kind::is_infinite) {
        return light.seen(direction);
    } else {
        const std::optional<Vec3> point = met(light, direction);
        return point ? SeenLight{light.radiance(), light.pdf({0, 0, 0}, direction, *point)} : SeenLight{};
    }
}

// Bins of equal solid angle in the cone around samples, with what integrals over fine steps expect in each. Outlines of
// lights cross the steps, of which there are 512 both ways.
class ConeBins {
  public:
    static constexpr int bins = 8;
    static constexpr int steps = 64;

    explicit ConeBins(std::span<const Vec3> directions) : axis({0, 0, 1}) {
        Vec3 sum;
        for (const Vec3 direction : directions)
            sum = sum + direction;
        axis = Frame(normalized(sum));
        for (const Vec3 direction : directions)
            height = std::max(height, 1.02f * one_minus_cos_between(direction, axis.z));
        height = std::min(height, 2.0f);
    }

    /// The integral of a function over each bin.
    template <class Function> std::vector<double> integrals(const Function &function) const {
        std::vector<double> result(bins * bins);
        constexpr int all = bins * steps;
        for (int i = 0; i < all; ++i)
            for (int j = 0; j < all; ++j) {
                const float drop = height * (static_cast<float>(i) + 0.5f) / all;
                const float turn = 2 * pi * (static_cast<float>(j) + 0.5f) / all;
                const float radius = std::sqrt(drop * (2 - drop));
                const Vec3 local{radius * std::cos(turn), radius * std::sin(turn), 1 - drop};
                result[static_cast<std::size_t>(i / steps * bins + j / steps)] +=
                    function(axis.world_from_local(local)) * 2 * static_cast<double>(pi * height) / (all * all);
            }
        return result;
    }

    std::size_t bin_of(Vec3 direction) const {
        const Vec3 local = axis.local_from_world(direction);
        const float turn = std::atan2(local.y, local.x) / (2 * pi);
        const int row = static_cast<int>(one_minus_cos_between(direction, axis.z) / height * bins);
        const int column = static_cast<int>((turn < 0 ? turn + 1 : turn) * bins);
        return static_cast<std::size_t>(std::min(row, bins - 1) * bins + std::min(column, bins - 1));
    }

  private:
    Frame axis;
    float height = 0; // one minus the cosine of the cone
};

template <class Kind> void expect_samples_follow_the_pdf(const Kind &light) {
    constexpr int draws = 50000;
    Numbers numbers;
    std::vector<Vec3> directions;
    double brought = 0;
    for (int i = 0; i < draws; ++i) {
        EmissionSample sample;
        ASSERT_TRUE(light.sample({0, 0, 0}, numbers.two(), sample));
        ASSERT_NEAR(length(sample.to_light), 1, 1e-5);
        directions.push_back(sample.to_light);
        brought += sample.radiance.g / sample.pdf / draws;
        // All but those on an edge, to rounding.
        const SeenLight found = seen(light, sample.to_light);
        if (found.pdf > 0 && i % 50 == 0) {
            EXPECT_NEAR(sample.pdf, found.pdf, 2e-3 * found.pdf);
            EXPECT_NEAR(sample.radiance.g, found.radiance.g, 1e-3 * found.radiance.g);
        }
    }

    const ConeBins bins(directions);
    const std::vector<double> expected = bins.integrals([&](Vec3 d) { return seen(light, d).pdf; });
    EXPECT_NEAR(std::accumulate(expected.begin(), expected.end(), 0.0), 1, 5e-3);
    std::vector<double> counts(expected.size());
    for (const Vec3 direction : directions)
        ++counts[bins.bin_of(direction)];
    double chi_square = 0;
    double rest = draws;
    double rest_expected = draws;
    int freedom = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double mean = expected[i] * draws;
        if (mean < 50) // an outline may cross it
            continue;
        chi_square += (counts[i] - mean) * (counts[i] - mean) / mean;
        rest -= counts[i];
        rest_expected -= mean;
        ++freedom;
    }
    ASSERT_GT(freedom, 5);
    // The 99.99 % point (Wilson, Hilferty, 1931), and the errors of the expectations.
    const double spread = 2.0 / 9 / freedom;
    EXPECT_LT(chi_square, 1.15 * freedom * std::pow(1 - spread + 3.72 * std::sqrt(spread), 3));
    EXPECT_NEAR(rest, rest_expected, 0.01 * draws);

    // What samples bring, on average, is the integral of radiance over all directions.
    const std::vector<double> arriving = bins.integrals([&](Vec3 d) { return seen(light, d).radiance.g; });
    const double wanted = std::accumulate(arriving.begin(), arriving.end(), 0.0);
    EXPECT_NEAR(brought, wanted, 0.015 * wanted);
}

TEST(LightSampling, SamplesOfEveryLightFollowItsPdf) {
    for (const Case &c : cases()) {
        SCOPED_TRACE(c.name);
        std::visit(
            []<class Kind>(const Kind &light) {
                if constexpr (!Kind::is_delta && !std::is_same_v<Kind, UnsampledEmitter>)
                    expect_samples_follow_the_pdf(light);
            },
            c.light);
    }
}

TEST(LightSampling, EveryTypeHasACase) {
    std::vector<bool> is_there(std::variant_size_v<Light>);
    for (const Case &c : cases())
        is_there[c.light.index()] = true;
    EXPECT_EQ(std::ranges::count(is_there, false), 0);
}

TEST(LightSampling, DeltaLightsFallOffAsTheyShould) {
    EmissionSample sample;
    ASSERT_TRUE((PointLight{{0, 3, 4}, {1, 2, 3}}.sample({0, 0, 0}, {}, sample)));
    EXPECT_NEAR(sample.radiance.g, 2 / 25.0, 1e-7);
    EXPECT_NEAR(sample.to_light.z, 0.8, 1e-6);
    EXPECT_EQ(sample.end.z, 4);
    EXPECT_FALSE((PointLight{{0, 3, 4}, {1, 2, 3}}.sample({0, 3, 4}, {}, sample)));

    const SpotLight spot{{0, 5, 0}, {0, -1, 0}, {1, 2, 3}, 0.1f, 0.3f};
    ASSERT_TRUE(spot.sample({0, 0, 0}, {}, sample));
    EXPECT_NEAR(sample.radiance.g, 2 / 25.0, 1e-7);
    EXPECT_FALSE(spot.sample({0, 6, 0}, {}, sample)); // behind it

    const DistantLight distant{{0, 0.6f, 0.8f}, {1, 2, 3}};
    ASSERT_TRUE(distant.sample({7, 8, 9}, {}, sample));
    EXPECT_EQ(sample.radiance.g, 2);
    EXPECT_EQ(sample.to_light.z, 0.8f);
}

TEST(LightSampling, ANarrowDiskHasItsIrradiance) {
    // As wide as the sun. Its middle is seen, and what lies two radii away is not.
    const DistantDiskLight sun{{0, 0.6f, 0.8f}, 1.07e-5f, {1, 2, 3}};
    EmissionSample sample;
    ASSERT_TRUE(sun.sample({7, 8, 9}, {0.3f, 0.7f}, sample));
    EXPECT_NEAR(sample.radiance.g / sample.pdf, 2, 1e-4);
    EXPECT_EQ(sun.seen(sun.to_light).pdf, sample.pdf);
    EXPECT_EQ(sun.seen(sun.to_light).radiance.g, sample.radiance.g);
    EXPECT_EQ(sun.seen(normalized(sun.to_light + Vec3{0.0093f, 0, 0})).pdf, 0);
}

TEST(LightSampling, WhatHasNoSideThereIsNotSampled) {
    EmissionSample sample;
    const Light behind =
        flat_emitter(Affine(), {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, FlatEmitter::Outline::Triangle, {1, 1, 1});
    EXPECT_FALSE(std::get<FlatEmitter>(behind).sample({0, 0, -1}, {0.5f, 0.5f}, sample));
    EXPECT_EQ(std::get<FlatEmitter>(behind).pdf({0, 0, -1}, {0, 0, 1}, {0, 0, 0}), 0);
    EXPECT_TRUE(std::get<FlatEmitter>(behind).sample({0, 0, 1}, {0.5f, 0.5f}, sample));
    const SphereEmitter around{std::make_shared<const Affine>(), {1, 1, 1}};
    EXPECT_FALSE(around.sample({0.5f, 0, 0}, {0.5f, 0.5f}, sample));
    EXPECT_EQ(around.pdf({0.5f, 0, 0}, {1, 0, 0}, {1, 0, 0}), 0);
}

// The power of a surface is pi times its area times its radiance; that of a light that shines from a point, its
// intensity over all directions; that of an infinite one, its irradiance on a disk as large as the scene.
TEST(LightSampling, PowersAreThoseOfTheFormulas) {
    const Color grey{2, 2, 2};
    const auto power = [](const Light &light) {
        return std::visit([](const auto &kind) { return kind.power(3); }, light);
    };
    const double pi = 3.14159265358979;
    const auto flat = [&](FlatEmitter::Outline outline) {
        return flat_emitter(Affine(), {0, 0, 0}, {2, 0, 0}, {0, 3, 0}, outline, grey);
    };
    EXPECT_NEAR(power(flat(FlatEmitter::Outline::Parallelogram)), pi * 6 * 2, 1e-4);
    EXPECT_NEAR(power(flat(FlatEmitter::Outline::Triangle)), pi * 3 * 2, 1e-4);
    EXPECT_NEAR(power(disk_emitter(Affine(), {CanonicalMap({0, 0, 0}, {0, 1, 0}, 2), 0.5}, grey)), pi * 3 * pi * 2,
                1e-3);
    EXPECT_NEAR(power(SphereEmitter{std::make_shared<const Affine>(), grey}), pi * 4 * pi * 2, 1e-3);
    EXPECT_EQ(power(UnsampledEmitter{grey}), 0);
    EXPECT_NEAR(power(PointLight{{}, grey}), 4 * pi * 2, 1e-4);
    EXPECT_NEAR(power(SpotLight{{}, {0, 0, 1}, grey, 1, 1}), 2 * pi * 2, 1e-4);
    EXPECT_NEAR(power(DistantLight{{0, 0, 1}, grey}), pi * 9 * 2, 1e-4);
    EXPECT_NEAR(power(DistantDiskLight{{0, 0, 1}, 0.1f, grey}), pi * 9 * 2, 1e-4);
    const Raster constant(1, 1, {{1, 1, 1}});
    EXPECT_NEAR(power(EnvironmentLight{std::make_shared<const Environment>(constant, grey, Affine(), Interrupt())}),
                pi * 9 * 4 * pi * 2, 1e-2);
}

TEST(LightSampling, EmittersOfAMeshStandInTheOrderOfItsTriangles) {
    std::vector<Light> lights(3, PointLight{});
    const Shape box =
        Quads{{{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}}, {{{0, 0, 5}, {2, 0, 5}, {2, 1, 5}, {0, 1, 5}}}}};
    const EmitterRange range = append_emitters(box, identity(), {1, 2, 3}, lights);
    ASSERT_EQ(lights.size(), 5u);
    EXPECT_EQ(range.of(0), 3);
    EXPECT_EQ(range.of(1), 4);
    EXPECT_EQ(std::get<FlatEmitter>(lights[4]).corner.z, 5);
    EXPECT_EQ(std::get<FlatEmitter>(lights[4]).area, 2);
    // A mirrored one shines from the same side of its surface.
    VtTransform mirror = identity();
    mirror[0][0] = -1;
    append_emitters(box, mirror, {1, 2, 3}, lights);
    EXPECT_EQ(std::get<FlatEmitter>(lights[5]).normal.z, 1);

    const EmitterRange sphere = append_emitters(Sphere{{1, 2, 3}, 2}, identity(), {1, 2, 3}, lights);
    EXPECT_EQ(sphere.of(0), 7);
    EXPECT_EQ(sphere.of(99), 7);
    EXPECT_EQ(EmitterRange().of(99), -1);
}

// Of each group, in which the lights are numbered on.
PowerLightSampler sampler_of(const std::vector<std::vector<float>> &groups) {
    std::vector<float> powers;
    std::vector<std::size_t> firsts;
    for (const std::vector<float> &group : groups) {
        firsts.push_back(powers.size());
        powers.insert(powers.end(), group.begin(), group.end());
    }
    firsts.push_back(powers.size());
    return {powers, firsts};
}

TEST(PowerLightSampler, ProbabilitiesSumToOneAndSamplesAgree) {
    // Empty groups and dark lights at the start, in the middle and at the end; one that has no finite power.
    const std::vector<std::vector<float>> groups{{}, {0, 3, 0.5f}, {7}, {0}, {INFINITY}, {}, {1e-3f, 0, 20, 0}, {}};
    const PowerLightSampler sampler = sampler_of(groups);
    const LightSampleContext reference({1, 2, 3}, {0, 1, 0});
    constexpr std::uint32_t lights = 10;
    constexpr int draws = 20000;
    std::vector<double> counts(lights);
    double sum = 0;
    for (std::uint32_t i = 0; i < lights; ++i)
        sum += sampler.pmf(reference, i);
    EXPECT_NEAR(sum, 1, 1e-6);

    for (int i = 0; i < draws; ++i) {
        // Evenly spread numbers, the least and the largest among them.
        const LightChoice choice = sampler.sample(reference, i == draws - 1 ? 1 - 0x1p-32 : 1.0 * i / draws);
        ASSERT_LT(choice.light, lights);
        ASSERT_GT(choice.pmf, 0);
        ASSERT_EQ(choice.pmf, sampler.pmf(reference, choice.light));
        ++counts[choice.light];
    }
    for (std::uint32_t i = 0; i < lights; ++i)
        EXPECT_NEAR(counts[i], draws * sampler.pmf(reference, i), 1.01) << i;
    // A quarter of the choice is shared evenly among the three groups that shine, the rest by power.
    EXPECT_NEAR(sampler.pmf(reference, 3), 0.25 / 3 + 0.75 * 7 / 30.501, 1e-6);
    EXPECT_NEAR(sampler.pmf(reference, 1), (0.25 / 3 + 0.75 * 3.5 / 30.501) * 3 / 3.5, 1e-6);
}

TEST(PowerLightSampler, OneLightIsCertainAndNoneIsNeverChosen) {
    const LightSampleContext reference({0, 0, 0});
    const LightChoice only = sampler_of({{}, {5}}).sample(reference, 0);
    EXPECT_EQ(only.light, 0u);
    EXPECT_EQ(only.pmf, 1);
    for (const double u : {0.0, 0.5, 1 - 0x1p-32}) {
        EXPECT_EQ(sampler_of({}).sample(reference, u).pmf, 0);
        EXPECT_EQ(sampler_of({{0}}).sample(reference, u).pmf, 0);
        EXPECT_EQ(sampler_of({{0, 0}, {0}}).sample(reference, u).pmf, 0);
    }
}

TEST(PowerLightSampler, MillionsOfLightsCanAllBeChosen) {
    constexpr std::size_t many = 3000000;
    const PowerLightSampler sampler = sampler_of({std::vector<float>(many, 1), {1e6f}});
    const LightSampleContext reference({0, 0, 0});
    double sum = 0;
    for (std::uint32_t i = 0; i <= many; ++i)
        sum += sampler.pmf(reference, i);
    EXPECT_NEAR(sum, 1, 1e-6);
    EXPECT_NEAR(sampler.pmf(reference, many), 0.125 + 0.75 * 0.25, 1e-6);
    EXPECT_EQ(sampler.sample(reference, 0).light, 0u);
    EXPECT_EQ(sampler.sample(reference, 1 - 0x1p-32).light, many);
}

} // namespace
