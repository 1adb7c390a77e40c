// What every BSDF keeps to: energy, pdfs, reciprocity, colours. All tests go through the one list of bsdf_cases.h.
#include "tests/libvantor/bsdf_cases.h"
#include "tests/libvantor/chi_square.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace vantor;
using bsdf_cases::Case;
using bsdf_cases::Mean;
using bsdf_cases::Numbers;

constexpr const float Color::*channels[] = {&Color::r, &Color::g, &Color::b};

TEST(EveryBsdf, IsAmongTheCases) {
    std::set<std::size_t> found;
    for (const Case &c : bsdf_cases::all())
        found.insert(c.bsdf.index());
    EXPECT_EQ(found.size(), std::variant_size_v<BsdfDescription>) << "a BSDF that no type of the vocabulary makes";
}

TEST(EveryBsdf, ScattersNoMoreThanArrivesInAWhiteFurnace) {
    // The table of albedos is exact to 0.002, and with it those that scatter all of the light.
    for (const Case &c : bsdf_cases::all())
        for (const Vec3 wo : bsdf_cases::directions()) {
            const Mean albedo = bsdf_cases::sampled_albedo(c.bsdf, wo, 4000);
            EXPECT_LT(albedo.value, 1.002 + 4 * albedo.standard_error) << c.name << ", z " << wo.z;
            EXPECT_GT(albedo.value, 0) << c.name << ", z " << wo.z;
        }
}

TEST(EveryBsdf, SamplesFollowThePdf) {
    constexpr int count = 10000;
    for (const Case &c : bsdf_cases::not_specular())
        for (const double cosine : {0.95, 0.5, 0.15, -0.7, -0.25}) {
            const Vec3 wo = chi_square::direction_at(cosine, 0.4);
            const Bsdf bsdf(c.bsdf, wo);
            chi_square::Bins bins([&](Vec3 wi) { return bsdf.pdf(wi); }, 0.04);
            EXPECT_LT(bins.probability(), 1.001) << c.name << ", z " << wo.z;
            Numbers numbers;
            for (int n = 0; n < count; ++n) {
                BsdfSample found;
                const Point2f u = numbers.get_2d();
                if (bsdf.sample(u, numbers.get_1d(), found) && !found.is_specular)
                    bins.count(found.wi);
            }
            EXPECT_GT(bins.p_value(count), 1e-4) << c.name << ", z " << wo.z;
        }
}

TEST(EveryBsdf, SamplesWeighValueTimesCosineOverPdf) {
    for (const Case &c : bsdf_cases::not_specular())
        for (const Vec3 wo : bsdf_cases::directions()) {
            const Bsdf bsdf(c.bsdf, wo);
            Numbers numbers;
            for (int n = 0; n < 200; ++n) {
                BsdfSample found;
                const Point2f u = numbers.get_2d();
                if (!bsdf.sample(u, numbers.get_1d(), found) || found.is_specular)
                    continue;
                EXPECT_NEAR(length(found.wi), 1, 1e-5);
                // Directions next to the surface have few digits left.
                if (std::fabs(found.wi.z) < 0.01f)
                    continue;
                const BsdfValue scattered = bsdf.evaluate(found.wi);
                const std::string where = c.name + ", z " + std::to_string(wo.z);
                ASSERT_NEAR(found.pdf / scattered.pdf, 1, 0.01) << where << " to " << found.wi.z;
                for (const float Color::*channel : channels)
                    ASSERT_NEAR(scattered.value.*channel * std::fabs(found.wi.z) / scattered.pdf, found.weight.*channel,
                                0.01 * found.weight.*channel + 1e-5)
                        << where << " to " << found.wi.z;
            }
        }
}

TEST(EveryBsdf, GivesThePdfAloneAsWithTheValue) {
    for (const Case &c : bsdf_cases::all()) {
        Numbers numbers;
        for (int n = 0; n < 300; ++n) {
            const Bsdf bsdf(c.bsdf, chi_square::direction_at(2 * numbers.get_1d() - 1, 6.28 * numbers.get_1d()));
            const Vec3 wi = chi_square::direction_at(2 * numbers.get_1d() - 1, 6.28 * numbers.get_1d());
            EXPECT_FLOAT_EQ(bsdf.pdf(wi), bsdf.evaluate(wi).pdf) << c.name << ", z " << wi.z;
        }
    }
}

TEST(EveryBsdf, WeighsAsMuchAsTheIntegral) {
    // The same albedo from the values as from the samples.
    for (const Case &c : bsdf_cases::not_specular())
        for (const Vec3 wo : {chi_square::direction_at(0.6, 1), chi_square::direction_at(-0.3, 2)}) {
            const Bsdf bsdf(c.bsdf, wo);
            const Mean albedo = bsdf_cases::sampled_albedo(c.bsdf, wo, 10000, false);
            const double expected = chi_square::integral(
                [&](Vec3 wi) {
                    return bsdf.evaluate(wi).value.g * std::fabs(wi.z) / bsdf_cases::radiance_scale(c.bsdf, wo, wi);
                },
                {}, 1e-3);
            EXPECT_NEAR(albedo.value, expected, 4 * albedo.standard_error + 2e-3) << c.name << ", z " << wo.z;
        }
}

TEST(EveryBsdf, IsReciprocal) {
    for (const Case &c : bsdf_cases::not_specular()) {
        Numbers numbers;
        for (int n = 0; n < 300; ++n) {
            const Vec3 a = chi_square::direction_at(2 * numbers.get_1d() - 1, 6.28 * numbers.get_1d());
            const Vec3 b = chi_square::direction_at(2 * numbers.get_1d() - 1, 6.28 * numbers.get_1d());
            const auto value = [&](Vec3 wo, Vec3 wi) {
                return Bsdf(c.bsdf, wo).evaluate(wi).value.g / std::sqrt(bsdf_cases::radiance_scale(c.bsdf, wo, wi));
            };
            EXPECT_NEAR(value(a, b), value(b, a), 1e-3 * value(a, b) + 1e-6) << c.name << ": " << a.z << " and " << b.z;
        }
    }
}

TEST(EveryBsdf, IsNeverMetByChanceIfItIsSpecular) {
    for (const Case &c : bsdf_cases::specular()) {
        BsdfSample found;
        const Bsdf bsdf(c.bsdf, chi_square::direction_at(0.6, 1));
        ASSERT_TRUE(bsdf.sample({0.3f, 0.3f}, 0.5f, found)) << c.name;
        EXPECT_TRUE(found.is_specular) << c.name;
        EXPECT_EQ(bsdf.pdf(found.wi), 0) << c.name;
        EXPECT_TRUE(is_black(bsdf.evaluate(found.wi).value)) << c.name;
    }
}

TEST(EveryBsdf, ScattersNothingOfLightAlongTheSurface) {
    // Neither towards a direction in the surface nor from one; and no value that is not finite.
    for (const Case &c : bsdf_cases::all()) {
        BsdfSample found;
        const Vec3 along{1, 0, 0};
        EXPECT_TRUE(is_black(Bsdf(c.bsdf, along).evaluate({0, 0, 1}).value)) << c.name;
        EXPECT_TRUE(is_black(Bsdf(c.bsdf, {0, 0, 1}).evaluate(along).value)) << c.name;
        if (Bsdf(c.bsdf, along).sample({0.3f, 0.3f}, 0.5f, found)) {
            EXPECT_TRUE(is_finite(found.weight) && is_finite(found.wi)) << c.name;
        }
    }
}

TEST(EveryBsdf, TakesAnotherColor) {
    for (const Case &c : bsdf_cases::all()) {
        BsdfDescription red = c.bsdf;
        set_color(red, {1, 0, 0});
        BsdfDescription black = c.bsdf;
        set_color(black, {0, 0, 0});
        EXPECT_GT(albedo(red).r, albedo(black).r + 0.05f) << c.name;
        EXPECT_EQ(albedo(red).g, albedo(black).g) << c.name;
        tint(red, {0, 1, 1});
        EXPECT_EQ(albedo(red).r, albedo(black).r) << c.name;
    }
}

} // namespace
