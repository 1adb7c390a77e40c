// Dielectric compensation: the light that the facets of rough glass throw to each other before it leaves.
#include "libvantor/scattering/dielectric_compensation.h"

#include "libvantor/scattering/albedo_table.h"
#include "libvantor/scattering/fresnel.h"

namespace vantor {

namespace {

// Less than this is not worth a sample, and no more than the tables' error.
constexpr float least_mean = 1e-3f;

// The fraction of light that single facets reflect or refract.
float single_albedo(Vec3 wo, float alpha, float ratio) {
    const Ggx facets(alpha);
    return mean_over_facets<float>(wo, facets, [&](Vec3 half, float weight) {
        const float cosine = std::clamp(dot(wo, half), 0.0f, 1.0f);
        const auto [reflectance, refracted_cosine] = refraction_of(cosine, ratio);
        const Vec3 back = reflected(wo, half);
        float found = 0;
        if (back.z > 0)
            found += reflectance * facets.visible(wo, back) / facets.visible(wo);
        const Vec3 through = refracted(wo, half, cosine, refracted_cosine, ratio);
        if (through.z < 0)
            found += (1 - reflectance) * facets.visible(through);
        return weight * found;
    });
}

using Tables = AlbedoTablesByIor<float, 9>;
constexpr std::array iors{1.0f, 1.1f, 1.25f, 1.5f, 1.8f, 2.4f, 3.5f, 6.0f, 10.0f};

// By the ior of the denser side over that of the other.
Tables &tables_of_rarer_side() {
    static Tables made(iors, [](Vec3 wo, float alpha, float ior) { return single_albedo(wo, alpha, ior); });
    return made;
}
Tables &tables_of_denser_side() {
    static Tables made(iors, [](Vec3 wo, float alpha, float ior) { return single_albedo(wo, alpha, 1 / ior); });
    return made;
}

float loss(float cosine, float alpha, float ratio) {
    return 1 - (ratio < 1 ? tables_of_denser_side().at(cosine, alpha, 1 / ratio)
                          : tables_of_rarer_side().at(cosine, alpha, ratio));
}
float mean_loss(float alpha, float ratio) {
    return 1 - (ratio < 1 ? tables_of_denser_side().mean(alpha, 1 / ratio) : tables_of_rarer_side().mean(alpha, ratio));
}

} // namespace

DielectricCompensation::DielectricCompensation(float facet_alpha, float cosine, float index_ratio)
    : alpha(facet_alpha), ratio(index_ratio) {
    const float mean_here = mean_loss(alpha, ratio);
    const float mean_there = mean_loss(alpha, 1 / ratio);
    if (std::min(mean_here, mean_there) < least_mean)
        return;
    // Of light from the rarer side and of light from the denser one; neither can be more than 1.
    const float ior = std::max(ratio, 1 / ratio);
    const float rarer_over_denser = ratio < 1 ? mean_there / mean_here : mean_here / mean_there;
    const float into_rarer = std::min((1 - mean_dielectric_reflectance(ior)) * rarer_over_denser / (ior * ior), 1.0f);
    const float into_denser = into_rarer * ior * ior / rarer_over_denser;
    const float transmitted = ratio < 1 ? into_rarer : into_denser;

    at_wo = std::max(loss(cosine, alpha, ratio), 0.0f);
    stays = 1 - transmitted;
    per_loss_here = stays * at_wo * inverse_pi / mean_here;
    per_loss_there = transmitted * at_wo * inverse_pi / mean_there;
}

float DielectricCompensation::value(float cosine, bool is_same_side) const {
    if (at_wo == 0)
        return 0;
    const float at_wi = std::max(loss(cosine, alpha, is_same_side ? ratio : 1 / ratio), 0.0f);
    return at_wi * (is_same_side ? per_loss_here : per_loss_there);
}

} // namespace vantor
