// What is special about each BSDF and what they are made of: energy, Fresnel, microfacets.
#include "libvantor/scattering/energy_compensation.h"
#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"
#include "tests/libvantor/bsdf_cases.h"
#include "tests/libvantor/chi_square.h"

#include <gtest/gtest.h>

namespace {

using namespace vantor;
using bsdf_cases::Mean;
using bsdf_cases::Numbers;
using bsdf_cases::sampled_albedo;
using bsdf_cases::Sums;
using bsdf_cases::white;
using bsdf_cases::with_roughness;

const Conductor ideal_metal{{0, 0, 0}, white}; // an imaginary index reflects everything
const Conductor gold{{0.19f, 0.56f, 1.33f}, {3.40f, 2.20f, 1.87f}};
const Dielectric glass{1.5f};

TEST(Bsdf, SmoothBoundariesLoseNothing) {
    for (const BsdfDescription &bsdf : {BsdfDescription(ideal_metal), BsdfDescription(glass),
                                        BsdfDescription(Dielectric{1 / 1.5f}), with_roughness(Dielectric{1}, 0.5f)})
        for (const Vec3 wo : bsdf_cases::directions())
            EXPECT_NEAR(sampled_albedo(bsdf, wo, 1000).value, 1, 1e-5) << bsdf.index() << ", z " << wo.z;
}

TEST(Bsdf, RoughMetalLosesNothing) {
    const Conductor dense{{1, 1, 1}, {1e4f, 1e4f, 1e4f}};
    const Principled metallic{.base_color = white, .metallic = 1};
    for (const float roughness : {0.04f, 0.1f, 0.2f, 0.35f, 0.5f, 0.75f, 1.0f})
        for (const BsdfDescription &metal :
             {BsdfDescription(ideal_metal), BsdfDescription(dense), BsdfDescription(metallic)})
            for (const double cosine : {1.0, 0.95, 0.5, 0.15, 0.05, -0.7, -0.25}) {
                const Mean albedo =
                    sampled_albedo(with_roughness(metal, roughness), chi_square::direction_at(cosine, 0.4), 4000);
                EXPECT_NEAR(albedo.value, 1, 4 * albedo.standard_error + 2e-3)
                    << "roughness " << roughness << ", z " << cosine << ", BSDF " << metal.index();
                // Both ways of sampling weigh alike, so that a path hardly ever gains much.
                EXPECT_LT(albedo.standard_error * std::sqrt(4000), 0.5)
                    << "roughness " << roughness << ", z " << cosine;
            }
}

TEST(Bsdf, RoughMetalColorsLightAtEveryFacet) {
    // The light that meets several facets has more of a metal's colour, so that the whole has, too.
    const Vec3 wo = chi_square::direction_at(0.7, 1);
    const auto blue_over_red = [&](float roughness) {
        const Bsdf metal(with_roughness(gold, roughness), wo);
        const auto channel = [&](float Color::*c) {
            return chi_square::integral([&](Vec3 wi) { return metal.evaluate(wi).value.*c * std::fabs(wi.z); }, {},
                                        1e-4);
        };
        return channel(&Color::b) / channel(&Color::r);
    };
    EXPECT_LT(blue_over_red(1), blue_over_red(0.3f) - 0.02);
}

TEST(Bsdf, RoughGlassLosesNothing) {
    // From either side; between the indices that have a table, albedos are known to about 0.005.
    for (const float roughness : {0.04f, 0.1f, 0.2f, 0.5f, 1.0f})
        for (const auto &[ior, error] : {std::pair{1.5f, 2e-3}, {1 / 1.5f, 2e-3}, {1.33f, 5e-3}, {2.4f, 2e-3}})
            for (const Vec3 wo : bsdf_cases::directions()) {
                const Mean albedo = sampled_albedo(with_roughness(Dielectric{ior}, roughness), wo, 4000);
                EXPECT_NEAR(albedo.value, 1, 4 * albedo.standard_error + error)
                    << "roughness " << roughness << ", ior " << ior << ", z " << wo.z;
            }
}

TEST(Bsdf, WhitePlasticLosesNothing) {
    // But for rough coats what meets several facets; the tables of albedos are exact to 0.002 at these.
    for (const float roughness : {0.0f, 0.1f, 0.3f, 0.6f, 1.0f})
        for (const float ior : {1.1f, 1.25f, 1.5f, 1.8f, 2.5f})
            for (const Vec3 wo : bsdf_cases::directions()) {
                const Mean albedo = sampled_albedo(with_roughness(Plastic{white, ior}, roughness), wo, 4000);
                EXPECT_NEAR(albedo.value, 1, 4 * albedo.standard_error + 2e-3)
                    << roughness << ", " << ior << ", z " << wo.z;
            }
}

TEST(Bsdf, CoatsReflectByFresnelsEquations) {
    const Principled coated{.base_color = {}, .specular = 0, .clearcoat = 1};
    for (const auto &[degrees, ior, reflectance] :
         {std::tuple{0.0, 1.5f, 0.04}, {60.0, 1.5f, 0.0892}, {85.0, 1.5f, 0.6128}, {60.0, 1.33f, 0.0591}}) {
        const Vec3 wo = chi_square::direction_at(std::cos(degrees * pi / 180), 0.3);
        EXPECT_NEAR(sampled_albedo(Plastic{{}, ior}, wo, 100).value, reflectance, 1e-4) << degrees << ", " << ior;
        if (ior == 1.5f) {
            EXPECT_NEAR(sampled_albedo(coated, wo, 4000).value, reflectance, 4e-3) << degrees;
        }
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
                    const Principled principled{.base_color = white,
                                                .roughness = roughness,
                                                .specular = specular,
                                                .clearcoat = extra,
                                                .coat_roughness = 0.5f * roughness,
                                                .sheen = extra};
                    const Mean albedo = sampled_albedo(principled, chi_square::direction_at(cosine, 0), 2000);
                    EXPECT_LT(albedo.value, 1.001 + 4 * albedo.standard_error)
                        << roughness << ", " << specular << ", " << extra << ", z " << cosine;
                }
}

TEST(Bsdf, IsSpecularBelowTheLeastRoughness) {
    EXPECT_TRUE(is_specular(with_roughness(glass, 0.03f)));
    EXPECT_FALSE(is_specular(with_roughness(glass, 0.04f)));
    EXPECT_TRUE(is_specular(with_roughness(gold, 0.03f)));
    EXPECT_FALSE(is_specular(with_roughness(gold, 0.04f)));
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

TEST(Fresnel, MeanReflectanceIsTheIntegral) {
    for (const float ior : {1.1f, 1.33f, 1.5f, 3.0f}) {
        constexpr int steps = 100000;
        double sum = 0; // of 2 * reflectance * cosine
        for (int i = 0; i < steps; ++i) {
            const float cosine = (static_cast<float>(i) + 0.5f) / steps;
            sum += 2 * refraction_of(cosine, ior).reflectance * cosine;
        }
        EXPECT_NEAR(mean_dielectric_reflectance(ior), sum / steps, 1e-5) << ior;
    }
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
    ASSERT_TRUE(DielectricBsdf(glass, {0.8f, 0, cosine}).sample({}, 0.9f, found));
    EXPECT_NEAR(found.wi.x, -0.8 / 1.5, 1e-6);
    EXPECT_LT(found.wi.z, 0);
    EXPECT_NEAR(found.weight.g, 1 / (1.5 * 1.5), 1e-6);
    ASSERT_TRUE(DielectricBsdf(glass, found.wi).sample({}, 0.9f, found));
    EXPECT_NEAR(found.wi.x, 0.8, 1e-6);
    EXPECT_NEAR(found.wi.z, 0.6, 1e-6);
    EXPECT_NEAR(found.weight.g, 1.5 * 1.5, 1e-5);
    // Beyond the critical angle, all is reflected.
    ASSERT_TRUE(DielectricBsdf(glass, {0.8f, 0, -cosine}).sample({}, 0.999f, found));
    EXPECT_NEAR(found.wi.x, -0.8, 1e-6);
    EXPECT_NEAR(found.wi.z, -0.6, 1e-6);
    EXPECT_EQ(found.weight.g, 1);
}

// Of facets that reflect everything, the fraction that leaves after one of them.
Mean sampled_facets(float alpha, Vec3 wo, int count) {
    const Ggx facets(alpha);
    Numbers numbers;
    Sums sums;
    for (int n = 0; n < count; ++n) {
        const Vec3 wi = reflected(wo, facets.sample_normal(wo, numbers.get_2d()));
        sums.add(wi.z > 0 ? facets.visible(wo, wi) / facets.visible(wo) : 0.0f);
    }
    return sums.mean(count);
}

TEST(Microfacet, AlbedosInTheTableAreThoseOfSamples) {
    for (const float roughness : {0.05f, 0.13f, 0.4f, 0.77f, 1.0f})
        for (const double cosine : {0.05, 0.3, 0.62, 0.97}) {
            const Vec3 wo = chi_square::direction_at(cosine, 0);
            const Mean expected = sampled_facets(roughness * roughness, wo, 40000);
            const GlossyAlbedo found = glossy_albedo(wo.z, roughness * roughness);
            EXPECT_NEAR(found.of(1), expected.value, 4 * expected.standard_error + 2e-3) << roughness << ", " << cosine;
        }
    // Straight on to an alpha of 1, the integral is 1 - ln 2.
    EXPECT_NEAR(glossy_albedo(1, 1).of(1), 1 - std::log(2.0), 2e-3);
}

TEST(Microfacet, CompensationIsASumOverFacets) {
    // What leaves the second facet, the third, and so on, with the mean chance of leaving at each.
    for (const float roughness : {0.2f, 0.6f, 1.0f}) {
        const float alpha = Ggx::alpha_of(roughness);
        const double mean = mean_glossy_albedo(alpha).of(1);
        const GlossyAlbedo wo = glossy_albedo(0.6f, alpha);
        for (const float r0 : {0.0f, 0.3f, 0.9f, 1.0f}) {
            double reflectance = 0;
            constexpr int steps = 1000;
            for (int i = 0; i < steps; ++i) {
                const double cosine = (i + 0.5) / steps;
                reflectance += 2 * cosine * (r0 + (1 - r0) * std::pow(1 - cosine, 5)) / steps;
            }
            double expected = 0;
            double left = (1 - wo.of(1)) * reflectance;
            for (int facet = 2; facet < 2000; ++facet) {
                expected += left * reflectance * mean;
                left *= reflectance * (1 - mean);
            }
            const EnergyCompensation compensation(alpha, wo, {r0, r0, r0});
            EXPECT_NEAR(compensation.albedo().g, expected, 1e-4) << roughness << ", " << r0;
            // The same fraction as the values have.
            double sum = 0;
            for (int i = 0; i < steps; ++i) {
                const double cosine = (i + 0.5) / steps;
                sum += 2 * pi * cosine * compensation.value(static_cast<float>(cosine)).g / steps;
            }
            EXPECT_NEAR(sum, expected, 1e-3 * expected + 1e-5) << roughness << ", " << r0;
        }
    }
    EXPECT_EQ(EnergyCompensation(Ggx::least_alpha, glossy_albedo(0.6f, Ggx::least_alpha), white).albedo().g, 0);
}

TEST(Microfacet, FacetsCoverTheSurface) {
    // Seen from straight above, the facets make up the surface; from anywhere else, the visible ones make up its view.
    for (const float alpha : {0.05f, 0.3f, 1.0f}) {
        const Ggx facets(alpha);
        for (const double cosine : {1.0, 0.6, 0.2}) {
            const Vec3 wo = chi_square::direction_at(cosine, 0.3);
            const double seen = chi_square::integral(
                [&](Vec3 normal) {
                    const float turned = dot(wo, normal);
                    return normal.z > 0 && turned > 0 ? facets.normal_pdf(wo, normal) : 0.0f;
                },
                {}, 1e-4);
            EXPECT_NEAR(seen, 1, 2e-3) << "alpha " << alpha << ", cosine " << cosine;
        }
    }
}

} // namespace
