// Principled: most opaque and clear surfaces, by a few numbers that artists agree on.
#include "libvantor/scattering/principled.h"

#include "libvantor/scattering/fresnel.h"

#include <array>

namespace vantor {

namespace {

constexpr float coat_ior = 1.5f;

float facet_alpha(float roughness) { return std::max(Ggx::alpha_of(roughness), Ggx::least_alpha); }

// The albedo of a sheen of 1, whose value is Schlick's weight at the half vector.
float integrated_sheen(float cosine) {
    constexpr int steps = 32;
    const Vec3 wo{std::sqrt(1 - cosine * cosine), 0, cosine};
    float sum = 0;
    for (int i = 0; i < steps; ++i)
        for (int j = 0; j < steps; ++j) {
            const Point2f u{(static_cast<float>(i) + 0.5f) / steps, (static_cast<float>(j) + 0.5f) / steps};
            const Vec3 wi = warp::cosine_hemisphere(u);
            sum += schlick_weight(dot(wi, normalized(wo + wi)));
        }
    return pi * sum / (steps * steps);
}

float sheen_albedo(float cosine) {
    constexpr int nodes = 33;
    static const std::array<float, nodes> table = [] {
        std::array<float, nodes> made{};
        for (int i = 0; i < nodes; ++i)
            made[static_cast<std::size_t>(i)] = integrated_sheen(static_cast<float>(i) / (nodes - 1));
        return made;
    }();
    const float scaled = std::clamp(cosine, 0.0f, 1.0f) * (nodes - 1);
    const auto node = static_cast<std::size_t>(std::min(static_cast<int>(scaled), nodes - 2));
    return table[node] + (table[node + 1] - table[node]) * (scaled - static_cast<float>(node));
}

// Burley's diffuse reflection of 2012, scaled as Lagarde and de Rousiers do, so that none of it exceeds 1.
float body_value(float wo_cosine, float wi_cosine, float half_cosine, float roughness) {
    const float grazing = roughness * (0.5f + 2 * half_cosine * half_cosine);
    const float scale = 1 + (1 / 1.51f - 1) * roughness;
    const auto scatter = [&](float cosine) { return 1 + (grazing - 1) * schlick_weight(cosine); };
    return scale * scatter(wo_cosine) * scatter(wi_cosine) * inverse_pi;
}

// White where light is reflected; light that goes in and out again is coloured once (Burley 2015).
Dielectric glass_of(const Principled &p) {
    const Color once{std::sqrt(p.base_color.r), std::sqrt(p.base_color.g), std::sqrt(p.base_color.b)};
    return {p.ior, once, facet_alpha(p.roughness)};
}

} // namespace

PrincipledBsdf::PrincipledBsdf(const Principled &principled, Vec3 wo)
    : p(principled), facets(facet_alpha(p.roughness)), side(std::copysign(1.0f, wo.z)), o(on_side(wo, side)),
      glass_fraction((1 - p.metallic) * p.transmission), body_fraction((1 - p.metallic) * (1 - p.transmission)),
      body_r0(0.08f * p.specular),
      // A gloss of 0 reflects nothing at grazing angles either: no solid has so low an ior that it reflects less than a
      // 50th at normal incidence.
      body_r90(std::min(50 * body_r0, 1.0f)),
      entering(1 / (1 - mean_glossy_albedo(facet_alpha(p.roughness)).of(body_r0, body_r90))),
      r0(p.base_color * p.metallic + Color{1, 1, 1} * (body_fraction * body_r0)),
      r90(p.metallic + body_fraction * body_r90), layers(layers_at(o.z)) {
    const GlossyAlbedo albedo = glossy_albedo(o.z, facet_alpha(p.roughness));
    if (has_glass())
        glass = {glass_of(p), wo};
    if (p.metallic > 0)
        metal = {facet_alpha(p.roughness), albedo, p.base_color};
    const float below = 1 - layers.coat;
    coat_probability = layers.coat;
    facet_probability = below * albedo.of(largest_component(r0), r90);
    glass_probability = below * glass_fraction;
    const float body_albedo = (1 - layers.gloss) * std::min(largest_component(p.base_color) + layers.sheen, 1.0f);
    diffuse_probability = below * (body_fraction * body_albedo + p.metallic * largest_component(metal.albedo()));
    const float sum = coat_probability + facet_probability + glass_probability + diffuse_probability;
    if (!(sum > 0))
        return;
    coat_probability /= sum;
    facet_probability /= sum;
    glass_probability /= sum;
    diffuse_probability /= sum;
}

float PrincipledBsdf::coat_at(float cosine) const {
    if (!(p.clearcoat > 0))
        return 0;
    return p.clearcoat *
           glossy_albedo(cosine, facet_alpha(p.coat_roughness), coat_ior).of(normal_reflectance(coat_ior));
}

PrincipledBsdf::Layers PrincipledBsdf::layers_at(float cosine) const {
    return {coat_at(cosine), glossy_albedo(cosine, facet_alpha(p.roughness)).of(body_r0, body_r90),
            p.sheen > 0 ? p.sheen * sheen_albedo(cosine) : 0.0f};
}

Color PrincipledBsdf::reflection(Vec3 i, Vec3 half) const {
    const Layers at_i = layers_at(i.z);
    const float half_cosine = std::min(dot(o, half), 1.0f);
    const float weight = schlick_weight(half_cosine);

    const Color reflectance = r0 * (1 - weight) + Color{1, 1, 1} * (r90 * weight);
    Color value = reflectance * facets.reflection(o, i, half) + metal.value(i.z) * p.metallic;

    if (body_fraction > 0) {
        const float enters = body_fraction * (1 - layers.gloss) * (1 - at_i.gloss) * entering;
        const float below_sheen = (1 - layers.sheen) * (1 - at_i.sheen);
        const float sheen = p.sheen * weight;
        value += (p.base_color * (below_sheen * body_value(o.z, i.z, half_cosine, p.roughness)) +
                  Color{sheen, sheen, sheen}) *
                 enters;
    }
    value = value * ((1 - layers.coat) * (1 - at_i.coat));

    if (p.clearcoat > 0) {
        const Ggx coat(facet_alpha(p.coat_roughness));
        const float coat_reflectance = refraction_of(half_cosine, coat_ior).reflectance;
        const float coat_value = p.clearcoat * coat_reflectance * coat.reflection(o, i, half);
        value += Color{coat_value, coat_value, coat_value};
    }
    return value;
}

float PrincipledBsdf::reflection_pdf(Vec3 i, Vec3 half) const {
    float pdf =
        facet_probability * facets.reflection_pdf(o, half) + diffuse_probability * warp::cosine_hemisphere_pdf(i.z);
    if (p.clearcoat > 0)
        pdf += coat_probability * Ggx(facet_alpha(p.coat_roughness)).reflection_pdf(o, half);
    return pdf;
}

BsdfValue PrincipledBsdf::evaluate(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    const float sides = o.z * i.z;
    if (sides == 0)
        return {};
    BsdfValue found;
    if (sides > 0) {
        const Vec3 half = normalized(o + i);
        found = {reflection(i, half), reflection_pdf(i, half)};
    }
    if (has_glass()) {
        const BsdfValue through = glass.evaluate(wi);
        found.value += through.value * (glass_fraction * (1 - layers.coat) * (1 - coat_at(std::fabs(i.z))));
        found.pdf += glass_probability * through.pdf;
    }
    return found;
}

float PrincipledBsdf::pdf(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    const float sides = o.z * i.z;
    if (sides == 0)
        return 0;
    const float reflected = sides > 0 ? reflection_pdf(i, normalized(o + i)) : 0.0f;
    return has_glass() ? reflected + glass_probability * glass.pdf(wi) : reflected;
}

bool PrincipledBsdf::sample(Point2f u, float uc, BsdfSample &sample) const {
    if (o.z == 0)
        return false;

    Vec3 wi;
    if (uc < glass_probability) {
        if (!glass.sample(u, uc / glass_probability, sample))
            return false;
        wi = sample.wi;
    } else {
        uc -= glass_probability;
        Vec3 i;
        if (uc < diffuse_probability)
            i = warp::cosine_hemisphere(u);
        else if (uc < diffuse_probability + facet_probability)
            i = reflected(o, facets.sample_normal(o, u));
        else if (coat_probability > 0)
            i = reflected(o, Ggx(facet_alpha(p.coat_roughness)).sample_normal(o, u));
        if (!(i.z > 0))
            return false;
        wi = on_side(i, side);
    }
    const BsdfValue found = evaluate(wi);
    if (!(found.pdf > 0))
        return false;
    sample = {wi, found.value * (std::fabs(wi.z) / found.pdf), found.pdf, false};
    return true;
}

} // namespace vantor
