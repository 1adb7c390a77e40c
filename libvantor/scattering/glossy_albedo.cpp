// Glossy albedo: how much light rough boundaries reflect altogether.
#include "libvantor/scattering/glossy_albedo.h"

#include "libvantor/scattering/albedo_table.h"
#include "libvantor/scattering/fresnel.h"

namespace vantor {

namespace {

// `weight_of` is how far a facet's reflectance has gone from normal to grazing, for a cosine.
template <class WeightOf> GlossyAlbedo integrated(Vec3 wo, float alpha, WeightOf weight_of) {
    const Ggx facets(alpha);
    return mean_over_facets<GlossyAlbedo>(wo, facets, [&](Vec3 half, float facet_weight) -> GlossyAlbedo {
        const Vec3 wi = reflected(wo, half);
        if (!(wi.z > 0))
            return {};
        const float visible = facet_weight * facets.visible(wo, wi) / facets.visible(wo);
        const float weight = weight_of(std::clamp(dot(wo, half), 0.0f, 1.0f));
        return {visible * (1 - weight), visible * weight};
    });
}

AlbedoTable<GlossyAlbedo> &schlick_table() {
    static AlbedoTable<GlossyAlbedo> made(
        [](Vec3 wo, float alpha, float) { return integrated(wo, alpha, schlick_weight); });
    return made;
}

// Nearest to each other next to 1, where reflectances vary most.
AlbedoTablesByIor<GlossyAlbedo, 10> &dielectric_tables() {
    static AlbedoTablesByIor<GlossyAlbedo, 10> made(
        {1.1f, 1.15f, 1.2f, 1.3f, 1.4f, 1.5f, 1.7f, 2.0f, 2.5f, 3.0f}, [](Vec3 wo, float alpha, float ior) {
            return integrated(wo, alpha, [=](float cosine) { return dielectric_weight(cosine, ior); });
        });
    return made;
}

GlossyAlbedo of_mirror(float weight) { return {1 - weight, weight}; }

} // namespace

GlossyAlbedo glossy_albedo(float cosine, float alpha) {
    return alpha < Ggx::least_alpha ? of_mirror(schlick_weight(cosine)) : schlick_table().at(cosine, alpha);
}

GlossyAlbedo glossy_albedo(float cosine, float alpha, float ior) {
    if (alpha < Ggx::least_alpha)
        return of_mirror(dielectric_weight(cosine, ior));
    return dielectric_tables().at(cosine, alpha, ior);
}

GlossyAlbedo mean_glossy_albedo(float alpha) {
    // Twice the integral of (1 - cosine)^5 cosine is 1/21.
    return alpha < Ggx::least_alpha ? of_mirror(1 / 21.0f) : schlick_table().mean(alpha);
}

GlossyAlbedo mean_glossy_albedo(float alpha, float ior) {
    if (alpha < Ggx::least_alpha) {
        const float normal = normal_reflectance(ior);
        return of_mirror((mean_dielectric_reflectance(ior) - normal) / (1 - normal));
    }
    return dielectric_tables().mean(alpha, ior);
}

} // namespace vantor
