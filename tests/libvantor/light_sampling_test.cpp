// Sampling of every type of light against its pdf and its radiance; their bounds; the emitters of shapes.
#include "libvantor/lights/emitters.h"

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
        // By solid angle: of moderate size, around nearly half of all directions, long and narrow.
        {"rectangle", flat_emitter(Affine(), {-0.5f, -0.4f, -1}, {0.7f, -0.4f, -1}, {-0.5f, 0.6f, -1},
                                   FlatEmitter::Outline::Parallelogram, color)},
        {"rectangle that is near", flat_emitter(Affine(), {-1, -2, -0.05f}, {1, -2, -0.05f}, {-1, 1, -0.05f},
                                                FlatEmitter::Outline::Parallelogram, color)},
        {"strip", flat_emitter(Affine(), {-1, -0.5f, -0.5f}, {3, -0.5f, -0.5f}, {-1, -0.3f, -0.5f},
                               FlatEmitter::Outline::Parallelogram, color)},
        {"triangle that is near",
         flat_emitter(Affine(), {-3, -2, -0.1f}, {3, -2, -0.1f}, {0, 3, -0.1f}, FlatEmitter::Outline::Triangle, color)},
        {"triangle that is far",
         flat_emitter(Affine(), {-9, -9, -80}, {9, -9, -80}, {0, 9, -80}, FlatEmitter::Outline::Triangle, color)},
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

// Sampled by solid angle where that differs from sampling by area, and has its digits; the pdf is then one over it.
TEST(LightSampling, RectanglesAndTrianglesAreSampledBySolidAngleNearby) {
    const auto flat = [](FlatEmitter::Outline outline) {
        return flat_emitter(Affine(), {-1, -1, 0}, {1, -1, 0}, {-1, 1, 0}, outline, {1, 1, 1});
    };
    const FlatEmitter square = flat(FlatEmitter::Outline::Parallelogram);
    const FlatEmitter triangle = flat(FlatEmitter::Outline::Triangle);
    const double pi = 3.14159265358979;
    // A face of the cube around the point; half of it; and seen from above a corner, a b / (h sqrt(a^2 + b^2 + h^2)).
    EXPECT_NEAR(square.sampled_solid_angle({0, 0, 1}), 4 * pi / 6, 1e-5);
    EXPECT_NEAR(triangle.sampled_solid_angle({0, 0, 1}), 2 * pi / 6, 1e-5);
    EXPECT_NEAR(square.sampled_solid_angle({-1, -1, 1}), std::atan(4 / 3.0), 1e-5);
    for (const FlatEmitter &light : {square, triangle}) {
        EXPECT_EQ(light.sampled_solid_angle({0, 0, 100}), 0);
        EXPECT_EQ(light.sampled_solid_angle({-1, -1, 1e-6f}) > 0.1f, true); // at the corner: nearly a quarter
        EmissionSample sample;
        ASSERT_TRUE(light.sample({-0.2f, -0.3f, 0.5f}, {0.3f, 0.6f}, sample));
        EXPECT_EQ(sample.pdf, 1 / light.sampled_solid_angle({-0.2f, -0.3f, 0.5f}));
        EXPECT_EQ(sample.pdf, light.pdf({-0.2f, -0.3f, 0.5f}, sample.to_light, sample.end));
    }
    EXPECT_EQ(
        disk_emitter(Affine(), {CanonicalMap({0, 0, 0}, {0, 1, 0}, 2), 0.5}, {1, 1, 1}).sampled_solid_angle({0, 1, 0}),
        0);
    // Large, small, and far from the origin: points stay on the light.
    for (const float size : {1e-5f, 1.0f, 1e6f})
        for (const FlatEmitter::Outline outline :
             {FlatEmitter::Outline::Parallelogram, FlatEmitter::Outline::Triangle}) {
            const Vec3 at = Vec3{3, -4, 5} * size;
            const FlatEmitter light =
                flat_emitter(Affine(), at, at + Vec3{size, 0, 0}, at + Vec3{0, 0, size}, outline, {1, 1, 1});
            Numbers numbers;
            for (int i = 0; i < 2000; ++i) {
                const Vec3 reference =
                    at + Vec3{numbers.one() - 0.5f, -2 * numbers.one(), numbers.one()} * (1.5f * size);
                EmissionSample sample;
                if (!light.sample(reference, i == 0 ? Point2f{} : numbers.two(), sample))
                    continue;
                const Vec3 on = (sample.end - at) * (1 / size);
                ASSERT_TRUE(on.x >= -1e-4f && on.z >= -1e-4f && std::max(on.x, on.z) <= 1.0001f &&
                            std::fabs(on.y) < 1e-3f);
                ASSERT_NEAR(dot(sample.to_light, normalized(sample.end - reference)), 1, 1e-4);
            }
        }
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

// The intensity of a surface is its area times its radiance; the fluence of an infinite light, its radiance over all
// directions; and the vector points to where most of it comes from.
TEST(LightSampling, BoundsAreThoseOfTheFormulas) {
    const Color grey{2, 2, 2};
    const double pi = 3.14159265358979;
    const auto flat = [&](FlatEmitter::Outline outline) {
        return std::get<FlatEmitter>(Light(flat_emitter(Affine(), {0, 0, 0}, {2, 0, 0}, {0, 3, 0}, outline, grey)))
            .bounds();
    };
    EXPECT_NEAR(flat(FlatEmitter::Outline::Parallelogram).intensity, 6 * 2, 1e-4);
    EXPECT_NEAR(flat(FlatEmitter::Outline::Triangle).intensity, 3 * 2, 1e-4);
    EXPECT_EQ(flat(FlatEmitter::Outline::Triangle).center.y, 1.5f);
    EXPECT_EQ(flat(FlatEmitter::Outline::Triangle).half_extent.x, 1);
    EXPECT_NEAR((disk_emitter(Affine(), {CanonicalMap({0, 0, 0}, {0, 1, 0}, 2), 0.5}, grey).bounds().intensity),
                3 * pi * 2, 1e-3);
    EXPECT_NEAR((SphereEmitter{std::make_shared<const Affine>(), grey}.bounds().intensity), pi * 2, 1e-3);
    EXPECT_EQ(UnsampledEmitter{grey}.bounds().intensity, 0);
    EXPECT_NEAR((PointLight{{}, grey}.bounds().intensity), 2, 1e-5);
    const SpotLight spot{{}, {0, 0, 1}, grey, 0.5f, 1};
    EXPECT_NEAR(spot.bounds().cos_normals, 0.5, 1e-6);
    EXPECT_NEAR(spot.bounds().cos_emission, std::cos(pi / 6), 1e-6);

    EXPECT_NEAR((DistantLight{{0, 0, 1}, grey}.bounds().fluence), 2, 1e-5);
    EXPECT_NEAR((DistantLight{{0, 0, 1}, grey}.bounds().irradiance({0, 0.6f, 0.8f})), 1.6, 1e-5);
    const InfiniteLightBounds disk = DistantDiskLight{{0, 0, 1}, 0.1f, grey}.bounds();
    EXPECT_NEAR(disk.vector.z, 2, 1e-5);
    EXPECT_NEAR(disk.vector.z / disk.fluence, 0.95, 1e-5); // the mean cosine of a cap
    const Raster constant(1, 1, {{1, 1, 1}});
    const InfiniteLightBounds even =
        EnvironmentLight{std::make_shared<const Environment>(constant, grey, Affine(), Interrupt())}.bounds();
    EXPECT_NEAR(even.fluence, 4 * pi * 2, 1e-3);
    EXPECT_NEAR(even.contrast, 0, 1e-5);
    EXPECT_EQ(disk.contrast, 1);
    const Raster above(2, 2, {{1, 1, 1}, {1, 1, 1}, {0, 0, 0}, {0, 0, 0}});
    const InfiniteLightBounds upper =
        EnvironmentLight{std::make_shared<const Environment>(above, grey, Affine(), Interrupt())}.bounds();
    // Over the sphere's upper quarter of polar angles 1, over its lower quarter 0, between them a half.
    const double squares = 1 - std::sqrt(0.5) + 0.25 * std::sqrt(2.0);
    EXPECT_NEAR(upper.contrast, 1 - 0.5 / squares, 1e-3);
    EXPECT_GT(upper.irradiance({0, 1, 0}), upper.irradiance({1, 0, 0}));
    EXPECT_GT(upper.irradiance({1, 0, 0}), upper.irradiance({0, -1, 0}));
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

} // namespace
