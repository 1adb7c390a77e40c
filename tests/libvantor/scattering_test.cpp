// The ways of scattering, each by itself: energy, pdfs, reciprocity, limits.
#include "libvantor/scattering/bsdf.h"

#include "libvantor/scattering/energy_compensation.h"
#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"
#include "tests/libvantor/chi_square.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using namespace vantor;

struct Case {
    std::string name;
    Bsdf bsdf;
};

Bsdf rough(Bsdf bsdf, float roughness) {
    set_roughness(bsdf, roughness);
    return bsdf;
}

constexpr Color white{1, 1, 1};
// Reflects everything, as its index is imaginary.
const Conductor ideal_metal{{0, 0, 0}, white};
const Conductor gold{{0.19f, 0.56f, 1.33f}, {3.40f, 2.20f, 1.87f}};
const Dielectric glass{1.5f};

const Case smooth_cases[] = {
    {"mirror", ideal_metal},
    {"gold mirror", gold},
    {"glass", glass},
    {"bubble", Dielectric{1 / 1.5f}},
    {"nothing", rough(Dielectric{1}, 0.5f)},
};

const Case rough_cases[] = {
    {"diffuse", Diffuse{white}},
    {"metal 0.2", rough(ideal_metal, 0.2f)},
    {"metal 0.5", rough(ideal_metal, 0.5f)},
    {"metal 1", rough(ideal_metal, 1)},
    {"gold 0.4", rough(gold, 0.4f)},
    {"gold 1", rough(gold, 1)},
    {"glass 0.2", rough(glass, 0.2f)},
    {"glass 0.5", rough(glass, 0.5f)},
    {"glass 1", rough(glass, 1)},
    {"diamond 0.3", rough(Dielectric{2.4f}, 0.3f)},
    {"bubble 0.4", rough(Dielectric{0.75f}, 0.4f)},
};

// What a coat or a gloss covers.
const Case layered_cases[] = {
    {"plastic", Plastic{white}},
    {"black plastic", Plastic{{0, 0, 0}}},
    {"grey plastic", Plastic{{0.3f, 0.3f, 0.3f}, 1.8f}},
    {"plastic 0.3", rough(Plastic{white}, 0.3f)},
    {"plastic 0.8", rough(Plastic{white, 2.0f}, 0.8f)},
    {"principled", Principled{.base_color = white}},
    {"rough", Principled{.base_color = white, .roughness = 1, .specular = 0}},
    {"gloss only", Principled{.base_color = {0, 0, 0}, .roughness = 0.3f, .specular = 1}},
    {"metallic", Principled{.base_color = {0.9f, 1, 0.3f}, .metallic = 1, .roughness = 0.3f}},
    {"rough metallic", Principled{.base_color = {1, 0.6f, 0.2f}, .metallic = 1, .roughness = 1}},
    {"half metallic", Principled{.base_color = white, .metallic = 0.5f, .roughness = 0.7f}},
    {"coated", Principled{.base_color = white, .clearcoat = 1, .coat_roughness = 0.2f}},
    {"coated metal",
     Principled{.base_color = white, .metallic = 1, .roughness = 0.4f, .clearcoat = 0.5f, .coat_roughness = 0.6f}},
    {"sheen", Principled{.base_color = white, .roughness = 0.8f, .specular = 0.2f, .sheen = 1}},
    {"black sheen", Principled{.base_color = {0, 0, 0}, .specular = 0, .sheen = 1}},
    {"principled glass", Principled{.base_color = white, .roughness = 0.3f, .transmission = 1}},
    {"everything", Principled{.base_color = white,
                              .metallic = 0.2f,
                              .roughness = 0.4f,
                              .specular = 0.8f,
                              .clearcoat = 0.7f,
                              .coat_roughness = 0.3f,
                              .sheen = 0.5f,
                              .transmission = 0.4f,
                              .ior = 1.8f}},
};

// All whose directions have a pdf, most or all of them.
std::vector<Case> spread_cases() {
    std::vector<Case> cases(std::begin(rough_cases), std::end(rough_cases));
    cases.insert(cases.end(), std::begin(layered_cases), std::end(layered_cases));
    return cases;
}

// Directions of light that leaves, on both sides: steep, slanting, grazing.
std::vector<Vec3> ways_out() {
    std::vector<Vec3> ways;
    for (const double cosine : {0.95, 0.5, 0.15, -0.7, -0.25})
        ways.push_back(chi_square::direction_at(cosine, 0.4));
    return ways;
}

// Independent numbers, as the tests suppose; the sampler's are better than that.
class Numbers {
  public:
    float one() { return sobol::unit_float(static_cast<std::uint32_t>(engine())); }
    Point2f get_2d() {
        const float u = one();
        return {u, one()};
    }

  private:
    std::mt19937 engine{1};
};

// What radiance is divided by to be power: it holds the squared ratio of the indices of the two sides.
double radiance_scale(const Bsdf &bsdf, Vec3 out, Vec3 in) {
    if (out.z * in.z > 0)
        return 1;
    double ior = 1;
    if (const auto *dielectric = std::get_if<Dielectric>(&bsdf))
        ior = dielectric->ior;
    if (const auto *principled = std::get_if<Principled>(&bsdf))
        ior = principled->ior;
    return out.z > 0 ? 1 / (ior * ior) : ior * ior;
}

struct Mean {
    double value = 0;
    double error = 0; // standard
};

class Sums {
  public:
    void add(double value) {
        sum += value;
        squares += value * value;
    }
    Mean mean(int count) const {
        const double mean = sum / count;
        return {mean, std::sqrt(std::max(0.0, squares / count - mean * mean) / count)};
    }

  private:
    double sum = 0;
    double squares = 0;
};

// The fraction of light, as power, that is scattered of light that comes from everywhere alike.
Mean sampled_albedo(const Bsdf &bsdf, Vec3 out, int count, bool with_specular = true) {
    Numbers numbers;
    Sums sums;
    for (int n = 0; n < count; ++n) {
        BsdfSample found;
        const Point2f pair = numbers.get_2d();
        if (!sample(bsdf, out, pair, numbers.one(), found) || (found.is_specular && !with_specular))
            continue;
        sums.add(found.weight.g / radiance_scale(bsdf, out, found.in));
    }
    return sums.mean(count);
}

TEST(Bsdf, SmoothBoundariesLoseNothing) {
    for (const Case &c : smooth_cases) {
        if (std::holds_alternative<Conductor>(c.bsdf) && c.name != "mirror")
            continue;
        for (const Vec3 out : ways_out())
            EXPECT_NEAR(sampled_albedo(c.bsdf, out, 1000).value, 1, 1e-5) << c.name << ", z " << out.z;
    }
}

TEST(Bsdf, NothingScattersMoreThanArrives) {
    // What keeps all of it does so by the table of albedos, which is exact to 0.002.
    for (const Case &c : spread_cases())
        for (const Vec3 out : ways_out()) {
            const Mean albedo = sampled_albedo(c.bsdf, out, 4000);
            EXPECT_LT(albedo.value, 1.002 + 4 * albedo.error) << c.name << ", z " << out.z;
        }
}

TEST(Bsdf, RoughMetalLosesNothing) {
    const Conductor dense{{1, 1, 1}, {1e4f, 1e4f, 1e4f}};
    const Principled metallic{.base_color = white, .metallic = 1};
    for (const float roughness : {0.04f, 0.1f, 0.2f, 0.35f, 0.5f, 0.75f, 1.0f})
        for (const Bsdf &metal : {Bsdf(ideal_metal), Bsdf(dense), Bsdf(metallic)})
            for (const double cosine : {1.0, 0.95, 0.5, 0.15, 0.05, -0.7, -0.25}) {
                const Mean albedo =
                    sampled_albedo(rough(metal, roughness), chi_square::direction_at(cosine, 0.4), 4000);
                EXPECT_NEAR(albedo.value, 1, 4 * albedo.error + 2e-3)
                    << "roughness " << roughness << ", z " << cosine << ", lobe " << metal.index();
                // Both ways of sampling weigh alike, so that a path hardly ever gains much.
                EXPECT_LT(albedo.error * std::sqrt(4000), 0.5) << "roughness " << roughness << ", z " << cosine;
            }
}

TEST(Bsdf, RoughMetalColorsLightAtEveryFacet) {
    // The light that meets several facets has more of a metal's colour, so that the whole has, too.
    const Vec3 out = chi_square::direction_at(0.7, 1);
    const auto share_of_blue = [&](float roughness) {
        const Bsdf metal = rough(gold, roughness);
        const auto channel = [&](float Color::*c) {
            return chi_square::integral([&](Vec3 in) { return evaluate(metal, out, in).value.*c * std::fabs(in.z); },
                                        {}, 1e-4);
        };
        return channel(&Color::b) / channel(&Color::r);
    };
    EXPECT_LT(share_of_blue(1), share_of_blue(0.3f) - 0.02);
}

TEST(Bsdf, RoughGlassLosesWhatMeetsSeveralFacets) {
    // The most that single scattering loses: at a roughness of 0.2 (alpha 0.04) 5 %, at 0.5 20 %, at 1 70 %.
    const auto lowest = [](float roughness) { return roughness < 0.3f ? 0.95 : roughness < 0.6f ? 0.8 : 0.3; };
    for (const float roughness : {0.1f, 0.2f, 0.5f, 1.0f})
        for (const Vec3 out : ways_out()) {
            const Mean albedo = sampled_albedo(rough(glass, roughness), out, 4000);
            EXPECT_GT(albedo.value, lowest(roughness) - 4 * albedo.error)
                << "roughness " << roughness << ", z " << out.z;
        }
}

TEST(Bsdf, WhitePlasticLosesNothing) {
    // But for rough coats what meets several facets; the table of albedos is exact to 0.002.
    for (const float roughness : {0.0f, 0.1f, 0.3f, 0.6f, 1.0f})
        for (const float ior : {1.1f, 1.5f, 2.5f})
            for (const Vec3 out : ways_out()) {
                const Mean albedo = sampled_albedo(rough(Plastic{white, ior}, roughness), out, 4000);
                EXPECT_NEAR(albedo.value, 1, 4 * albedo.error + 2e-3) << roughness << ", " << ior << ", z " << out.z;
            }
}

TEST(Bsdf, PrincipledIsNearlyAsBrightAsItsBase) {
    // The layers take from each other for both directions, which leaves a little too little.
    const Mean albedo = sampled_albedo(Principled{.base_color = white}, chi_square::direction_at(0.7, 0), 10000);
    EXPECT_GT(albedo.value, 0.8);
}

TEST(Bsdf, PrincipledNeverExceedsWhatArrives) {
    for (const float roughness : {0.0f, 0.25f, 0.5f, 1.0f})
        for (const float specular : {0.0f, 0.25f, 1.0f})
            for (const float extra : {0.0f, 1.0f}) // sheen and a coat
                for (const double cosine : {1.0, 0.7, 0.4, 0.2, 0.05}) {
                    const Principled lobe{.base_color = white,
                                          .roughness = roughness,
                                          .specular = specular,
                                          .clearcoat = extra,
                                          .coat_roughness = 0.5f * roughness,
                                          .sheen = extra};
                    const Mean albedo = sampled_albedo(lobe, chi_square::direction_at(cosine, 0), 2000);
                    EXPECT_LT(albedo.value, 1.001 + 4 * albedo.error)
                        << roughness << ", " << specular << ", " << extra << ", z " << cosine;
                }
}

TEST(Bsdf, SamplesFollowTheDensity) {
    constexpr int count = 10000;
    const auto expect_likely = [](const Case &c, Vec3 out) {
        chi_square::Bins bins([&](Vec3 in) { return evaluate(c.bsdf, out, in).pdf; }, 0.04);
        EXPECT_LT(bins.probability(), 1.001) << c.name << ", z " << out.z;
        Numbers numbers;
        for (int n = 0; n < count; ++n) {
            BsdfSample found;
            const Point2f pair = numbers.get_2d();
            if (sample(c.bsdf, out, pair, numbers.one(), found) && !found.is_specular)
                bins.count(found.in);
        }
        EXPECT_GT(bins.p_value(count), 1e-4) << c.name << ", z " << out.z;
    };
    for (const Case &c : rough_cases)
        for (const Vec3 out : ways_out())
            expect_likely(c, out);
    for (const Case &c : layered_cases)
        for (const double cosine : {0.6, -0.25})
            expect_likely(c, chi_square::direction_at(cosine, 2));
}

TEST(Bsdf, SamplesWeighValueTimesCosineOverDensity) {
    for (const Case &c : spread_cases())
        for (const Vec3 out : ways_out()) {
            Numbers numbers;
            for (int n = 0; n < 200; ++n) {
                BsdfSample found;
                const Point2f pair = numbers.get_2d();
                if (!sample(c.bsdf, out, pair, numbers.one(), found) || found.is_specular)
                    continue;
                EXPECT_NEAR(length(found.in), 1, 1e-5);
                // Directions next to the surface have few digits left.
                if (std::fabs(found.in.z) < 0.01f)
                    continue;
                const BsdfValue scattered = evaluate(c.bsdf, out, found.in);
                const std::string where = c.name + ", z " + std::to_string(out.z);
                ASSERT_NEAR(found.pdf / scattered.pdf, 1, 0.01) << where << " to " << found.in.z;
                for (const float Color::*channel : {&Color::r, &Color::g, &Color::b})
                    ASSERT_NEAR(scattered.value.*channel * std::fabs(found.in.z) / scattered.pdf, found.weight.*channel,
                                0.01 * found.weight.*channel + 1e-5)
                        << where << " to " << found.in.z;
            }
        }
}

TEST(Bsdf, WeighsAsMuchAsTheIntegral) {
    // The same albedo from the values as from the samples.
    for (const Case &c : spread_cases())
        for (const Vec3 out : {chi_square::direction_at(0.6, 1), chi_square::direction_at(-0.3, 2)}) {
            const Mean albedo = sampled_albedo(c.bsdf, out, 10000, false);
            const double wanted = chi_square::integral(
                [&](Vec3 in) {
                    return evaluate(c.bsdf, out, in).value.g * std::fabs(in.z) / radiance_scale(c.bsdf, out, in);
                },
                {}, 1e-3);
            EXPECT_NEAR(albedo.value, wanted, 4 * albedo.error + 2e-3) << c.name << ", z " << out.z;
        }
}

TEST(Bsdf, IsReciprocal) {
    for (const Case &c : spread_cases()) {
        Numbers numbers;
        for (int n = 0; n < 300; ++n) {
            const Vec3 a = chi_square::direction_at(2 * numbers.one() - 1, 6.28 * numbers.one());
            const Vec3 b = chi_square::direction_at(2 * numbers.one() - 1, 6.28 * numbers.one());
            const double there = evaluate(c.bsdf, a, b).value.g / std::sqrt(radiance_scale(c.bsdf, a, b));
            const double back = evaluate(c.bsdf, b, a).value.g / std::sqrt(radiance_scale(c.bsdf, b, a));
            EXPECT_NEAR(there, back, 1e-3 * there + 1e-6) << c.name << ": " << a.z << " and " << b.z;
        }
    }
}

TEST(Bsdf, SpecularWaysAreNeverMetByChance) {
    for (const Case &c : smooth_cases) {
        EXPECT_TRUE(is_specular(c.bsdf)) << c.name;
        BsdfSample found;
        const Vec3 out = chi_square::direction_at(0.6, 1);
        ASSERT_TRUE(sample(c.bsdf, out, {0.3f, 0.3f}, 0.5f, found));
        EXPECT_TRUE(found.is_specular);
        EXPECT_EQ(evaluate(c.bsdf, out, found.in).pdf, 0);
    }
    for (const Case &c : rough_cases)
        EXPECT_FALSE(is_specular(c.bsdf)) << c.name;
}

TEST(Bsdf, RoughnessNextToNothingIsNone) {
    EXPECT_TRUE(is_specular(rough(glass, 0.03f)));
    EXPECT_FALSE(is_specular(rough(glass, 0.04f)));
    EXPECT_TRUE(is_specular(rough(gold, 0.03f)));
    EXPECT_FALSE(is_specular(rough(gold, 0.04f)));
}

TEST(Bsdf, TakesAnotherColor) {
    for (const Case &c : spread_cases()) {
        Bsdf red = c.bsdf;
        set_color(red, {1, 0, 0});
        Bsdf black = c.bsdf;
        set_color(black, {0, 0, 0});
        EXPECT_GT(albedo(red).r, albedo(black).r + 0.05f) << c.name;
        EXPECT_EQ(albedo(red).g, albedo(black).g) << c.name;
    }
}

TEST(Bsdf, TellsWhetherLightComesThrough) {
    EXPECT_FALSE(transmits(Diffuse{white}));
    EXPECT_FALSE(transmits(gold));
    EXPECT_FALSE(transmits(Plastic{white}));
    EXPECT_TRUE(transmits(glass));
    EXPECT_FALSE(transmits(Principled{.base_color = white}));
    EXPECT_TRUE(transmits(Principled{.base_color = white, .transmission = 0.1f}));
    EXPECT_FALSE(transmits(Principled{.base_color = white, .metallic = 1, .transmission = 1}));
    // And so it is.
    for (const Case &c : spread_cases())
        for (const Vec3 out : ways_out()) {
            const float through = evaluate(c.bsdf, out, chi_square::direction_at(out.z > 0 ? -0.9 : 0.9, 1)).pdf;
            EXPECT_TRUE(transmits(c.bsdf) ? through >= 0 : through == 0) << c.name;
        }
}

TEST(Fresnel, ReflectanceAtNormalIncidence) {
    for (const float ior : {0.5f, 1.0f, 1.33f, 1.5f, 2.4f}) {
        const float root = (ior - 1) / (ior + 1);
        EXPECT_NEAR(refraction_of(1, ior).reflectance, root * root, 1e-6);
        EXPECT_NEAR(refraction_of(1, 1 / ior).reflectance, root * root, 1e-6);
        EXPECT_NEAR(normal_reflectance(ior), root * root, 1e-6);
    }
    // ((eta - 1)^2 + k^2) / ((eta + 1)^2 + k^2).
    EXPECT_NEAR(conductor_reflectance(1, 0.5f, 3), 9.25 / 11.25, 1e-6);
}

TEST(Fresnel, BrewstersAngleHalvesThePolarisations) {
    // At tan = n the one polarisation is not reflected, and the other with ((n^2 - 1) / (n^2 + 1))^2.
    const double n = 1.5;
    const double perpendicular = (n * n - 1) / (n * n + 1);
    const float cosine = static_cast<float>(1 / std::sqrt(1 + n * n));
    EXPECT_NEAR(refraction_of(cosine, 1.5f).reflectance, 0.5 * perpendicular * perpendicular, 1e-6);
}

TEST(Fresnel, TotalReflectionBeginsAtTheCriticalAngle) {
    const double cosine = std::sqrt(1 - 1 / (1.5 * 1.5));
    EXPECT_EQ(refraction_of(static_cast<float>(cosine - 1e-3), 1 / 1.5f).reflectance, 1);
    EXPECT_LT(refraction_of(static_cast<float>(cosine + 1e-3), 1 / 1.5f).reflectance, 0.9);
    EXPECT_EQ(refraction_of(0, 1.5f).reflectance, 1);
    // A boundary between equal media reflects nothing, however grazing.
    EXPECT_EQ(refraction_of(1e-4f, 1).reflectance, 0);
}

TEST(Fresnel, AConductorThatAbsorbsNothingIsADielectric) {
    for (const float cosine : {0.01f, 0.1f, 0.4f, 0.8f, 1.0f})
        EXPECT_NEAR(conductor_reflectance(cosine, 1.5f, 0), refraction_of(cosine, 1.5f).reflectance, 1e-5);
    for (const float eta : {0.0f, 1.0f, 100.0f})
        for (const float k : {0.0f, 1.0f, 100.0f})
            for (const float cosine : {0.0f, 0.5f, 1.0f}) {
                const float reflectance = conductor_reflectance(cosine, eta, k);
                EXPECT_TRUE(reflectance >= 0 && reflectance <= 1) << eta << " " << k << " " << cosine;
            }
}

TEST(Bsdf, RefractsBySnellsLaw) {
    const float cosine = 0.6f; // sine 0.8
    BsdfSample found;
    ASSERT_TRUE(sample(Bsdf(glass), {0.8f, 0, cosine}, {}, 0.9f, found));
    EXPECT_NEAR(found.in.x, -0.8 / 1.5, 1e-6);
    EXPECT_LT(found.in.z, 0);
    EXPECT_NEAR(found.weight.g, 1 / (1.5 * 1.5), 1e-6);
    ASSERT_TRUE(sample(Bsdf(glass), found.in, {}, 0.9f, found));
    EXPECT_NEAR(found.in.x, 0.8, 1e-6);
    EXPECT_NEAR(found.in.z, 0.6, 1e-6);
    EXPECT_NEAR(found.weight.g, 1.5 * 1.5, 1e-5);
    // Beyond the critical angle, all is reflected.
    ASSERT_TRUE(sample(Bsdf(glass), {0.8f, 0, -cosine}, {}, 0.999f, found));
    EXPECT_NEAR(found.in.x, -0.8, 1e-6);
    EXPECT_NEAR(found.in.z, -0.6, 1e-6);
    EXPECT_EQ(found.weight.g, 1);
}

// Of facets that reflect everything, the fraction that leaves after one of them.
Mean sampled_facets(float alpha, Vec3 out, int count) {
    const Ggx facets(alpha);
    Numbers numbers;
    Sums sums;
    for (int n = 0; n < count; ++n) {
        const Vec3 in = reflected(out, facets.sample_normal(out, numbers.get_2d()));
        sums.add(in.z > 0 ? facets.visible(out, in) / facets.visible(out) : 0.0f);
    }
    return sums.mean(count);
}

TEST(Microfacet, AlbedosInTheTableAreThoseOfSamples) {
    for (const float roughness : {0.05f, 0.13f, 0.4f, 0.77f, 1.0f})
        for (const double cosine : {0.05, 0.3, 0.62, 0.97}) {
            const Vec3 out = chi_square::direction_at(cosine, 0);
            const Mean wanted = sampled_facets(roughness * roughness, out, 40000);
            const GlossyAlbedo found = glossy_albedo(out.z, roughness * roughness);
            EXPECT_NEAR(found.of(1), wanted.value, 4 * wanted.error + 2e-3) << roughness << ", " << cosine;
        }
    // Straight on to an alpha of 1, the integral is 1 - ln 2.
    EXPECT_NEAR(glossy_albedo(1, 1).of(1), 1 - std::log(2.0), 2e-3);
}

TEST(Microfacet, CompensationIsASumOverFacets) {
    // What leaves the second facet, the third, and so on, with the mean chance of leaving at each.
    for (const float roughness : {0.2f, 0.6f, 1.0f}) {
        const float alpha = Ggx::alpha_of(roughness);
        const double mean = mean_glossy_albedo(alpha).of(1);
        const GlossyAlbedo out = glossy_albedo(0.6f, alpha);
        for (const float r0 : {0.0f, 0.3f, 0.9f, 1.0f}) {
            double reflectance = 0;
            constexpr int steps = 1000;
            for (int i = 0; i < steps; ++i) {
                const double cosine = (i + 0.5) / steps;
                reflectance += 2 * cosine * (r0 + (1 - r0) * std::pow(1 - cosine, 5)) / steps;
            }
            double wanted = 0;
            double left = (1 - out.of(1)) * reflectance;
            for (int facet = 2; facet < 2000; ++facet) {
                wanted += left * reflectance * mean;
                left *= reflectance * (1 - mean);
            }
            const EnergyCompensation compensation(alpha, out, {r0, r0, r0});
            EXPECT_NEAR(compensation.albedo().g, wanted, 1e-4) << roughness << ", " << r0;
            // The same fraction as the values have.
            double sum = 0;
            for (int i = 0; i < steps; ++i) {
                const double cosine = (i + 0.5) / steps;
                sum += 2 * pi * cosine * compensation.value(static_cast<float>(cosine)).g / steps;
            }
            EXPECT_NEAR(sum, wanted, 1e-3 * wanted + 1e-5) << roughness << ", " << r0;
        }
    }
    EXPECT_EQ(EnergyCompensation(Ggx::least_alpha, glossy_albedo(0.6f, Ggx::least_alpha), white).albedo().g, 0);
}

TEST(Microfacet, FacetsCoverTheSurface) {
    // Seen from straight above, the facets make up the surface; from anywhere else, the visible ones make up its view.
    for (const float alpha : {0.05f, 0.3f, 1.0f}) {
        const Ggx facets(alpha);
        for (const double cosine : {1.0, 0.6, 0.2}) {
            const Vec3 out = chi_square::direction_at(cosine, 0.3);
            const double seen = chi_square::integral(
                [&](Vec3 normal) {
                    const float turned = dot(out, normal);
                    return normal.z > 0 && turned > 0 ? facets.normal_pdf(out, normal) : 0.0f;
                },
                {}, 1e-4);
            EXPECT_NEAR(seen, 1, 2e-3) << "alpha " << alpha << ", cosine " << cosine;
        }
    }
}

} // namespace
