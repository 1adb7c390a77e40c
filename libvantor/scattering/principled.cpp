// Principled: most opaque and clear surfaces, by a few numbers that artists agree on.
#include "libvantor/scattering/principled.h"

#include "libvantor/scattering/energy_compensation.h"
#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"

#include <array>

namespace vantor {

namespace {

constexpr float coat_r0 = 0.04f; // an index of refraction of 1.5

float facet_alpha(float roughness) { return std::max(Ggx::alpha_of(roughness), Ggx::least_alpha); }

// The albedo of a sheen of 1, whose value is Schlick's share at the half vector.
float integrated_sheen(float cosine) {
    constexpr int steps = 32;
    const Vec3 out{std::sqrt(1 - cosine * cosine), 0, cosine};
    float sum = 0;
    for (int i = 0; i < steps; ++i)
        for (int j = 0; j < steps; ++j) {
            const Point2f numbers{(static_cast<float>(i) + 0.5f) / steps, (static_cast<float>(j) + 0.5f) / steps};
            const Vec3 in = warp::cosine_hemisphere(numbers);
            sum += schlick_share(dot(in, normalized(out + in)));
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
float body_value(float out_cosine, float in_cosine, float half_cosine, float roughness) {
    const float grazing = roughness * (0.5f + 2 * half_cosine * half_cosine);
    const float scale = 1 + (1 / 1.51f - 1) * roughness;
    const auto scatter = [&](float cosine) { return 1 + (grazing - 1) * schlick_share(cosine); };
    return scale * scatter(out_cosine) * scatter(in_cosine) * inverse_pi;
}

// How much of the light from one direction each layer reflects, and leaves to those below it.
struct Layers {
    float coat;
    float gloss; // on the body
    float sheen;

    Layers(const Principled &p, float body_r0, float body_r90, float cosine)
        : coat(p.clearcoat > 0 ? p.clearcoat * glossy_albedo(cosine, facet_alpha(p.coat_roughness)).of(coat_r0) : 0.0f),
          gloss(glossy_albedo(cosine, facet_alpha(p.roughness)).of(body_r0, body_r90)),
          sheen(p.sheen > 0 ? p.sheen * sheen_albedo(cosine) : 0.0f) {}
};

// All that does not depend on where the light comes from.
struct Mixture {
    float glass; // the shares
    float body;
    float body_r0; // reflectances of the body's gloss
    float body_r90;
    float entering; // one over the mean share of light that the gloss lets through
    Color r0;       // of the facets of metal and body together, with their shares
    float r90;
    EnergyCompensation metal; // alone: what the gloss does not reflect at once enters the body
    Layers out;

    // The probabilities of sampling each; 0 in all if nothing is reflected.
    float coat_choice = 0;
    float facet_choice = 0;
    float glass_choice = 0;
    float diffuse_choice = 0; // the body, and the metal's compensation

    Mixture(const Principled &p, float cosine)
        : glass((1 - p.metallic) * p.transmission), body((1 - p.metallic) * (1 - p.transmission)),
          body_r0(0.08f * p.specular),
          // No gloss is none at grazing angles either: what is below a 50th straight on has no ior of a solid.
          body_r90(std::min(50 * body_r0, 1.0f)),
          entering(1 / (1 - mean_glossy_albedo(facet_alpha(p.roughness)).of(body_r0, body_r90))),
          r0(p.base_color * p.metallic + Color{1, 1, 1} * (body * body_r0)), r90(p.metallic + body * body_r90),
          out(p, body_r0, body_r90, cosine) {
        const GlossyAlbedo facets = glossy_albedo(cosine, facet_alpha(p.roughness));
        if (p.metallic > 0)
            metal = {facet_alpha(p.roughness), facets, p.base_color};
        const float below = 1 - out.coat;
        coat_choice = out.coat;
        facet_choice = below * facets.of(largest_component(r0), r90);
        glass_choice = below * glass;
        const float body_albedo = (1 - out.gloss) * std::min(largest_component(p.base_color) + out.sheen, 1.0f);
        diffuse_choice = below * (body * body_albedo + p.metallic * largest_component(metal.albedo()));
        const float sum = coat_choice + facet_choice + glass_choice + diffuse_choice;
        if (!(sum > 0))
            return;
        coat_choice /= sum;
        facet_choice /= sum;
        glass_choice /= sum;
        diffuse_choice /= sum;
    }
};

// White where light is reflected; light that goes in and out again is coloured once (Burley 2015).
Dielectric glass_of(const Principled &p) {
    const Color once{std::sqrt(p.base_color.r), std::sqrt(p.base_color.g), std::sqrt(p.base_color.b)};
    return {p.ior, once, facet_alpha(p.roughness)};
}

// One side of it, above which both directions lie.
BsdfValue reflection(const Principled &p, const Mixture &mixture, Vec3 o, Vec3 i) {
    const Layers in(p, mixture.body_r0, mixture.body_r90, i.z);
    const Vec3 half = normalized(o + i);
    const float half_cosine = std::min(dot(o, half), 1.0f);
    const float share = schlick_share(half_cosine);

    const Ggx facets(facet_alpha(p.roughness));
    const Color reflectance = mixture.r0 * (1 - share) + Color{1, 1, 1} * (mixture.r90 * share);
    Color value = reflectance * facets.reflection(o, i, half) + mixture.metal.value(i.z) * p.metallic;
    float pdf = mixture.facet_choice * facets.reflection_pdf(o, half) +
                mixture.diffuse_choice * warp::cosine_hemisphere_pdf(i.z);

    if (mixture.body > 0) {
        const float enters = mixture.body * (1 - mixture.out.gloss) * (1 - in.gloss) * mixture.entering;
        const float below_sheen = (1 - mixture.out.sheen) * (1 - in.sheen);
        const float sheen = p.sheen * share;
        value += (p.base_color * (below_sheen * body_value(o.z, i.z, half_cosine, p.roughness)) +
                  Color{sheen, sheen, sheen}) *
                 enters;
    }
    value = value * ((1 - mixture.out.coat) * (1 - in.coat));

    if (p.clearcoat > 0) {
        const Ggx coat(facet_alpha(p.coat_roughness));
        const float coat_value = p.clearcoat * (coat_r0 * (1 - share) + share) * coat.reflection(o, i, half);
        value += Color{coat_value, coat_value, coat_value};
        pdf += mixture.coat_choice * coat.reflection_pdf(o, half);
    }
    return {value, pdf};
}

BsdfValue evaluated(const Principled &p, const Mixture &mixture, Vec3 out, Vec3 in) {
    const float side = std::copysign(1.0f, out.z);
    BsdfValue found{};
    if (out.z * in.z > 0)
        found = reflection(p, mixture, on_side(out, side), on_side(in, side));
    if (mixture.glass > 0) {
        const BsdfValue through = glass_of(p).evaluate(out, in);
        const Layers at_in(p, mixture.body_r0, mixture.body_r90, std::fabs(in.z));
        found.value += through.value * (mixture.glass * (1 - mixture.out.coat) * (1 - at_in.coat));
        found.pdf += mixture.glass_choice * through.pdf;
    }
    return found;
}

} // namespace

BsdfValue Principled::evaluate(Vec3 out, Vec3 in) const {
    if (out.z * in.z == 0)
        return {};
    return evaluated(*this, Mixture(*this, std::fabs(out.z)), out, in);
}

bool Principled::sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const {
    if (out.z == 0)
        return false;
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const Mixture mixture(*this, o.z);

    Vec3 in;
    if (choice < mixture.glass_choice) {
        if (!glass_of(*this).sample(out, numbers, choice / mixture.glass_choice, result))
            return false;
        in = result.in;
    } else {
        choice -= mixture.glass_choice;
        Vec3 above;
        if (choice < mixture.diffuse_choice)
            above = warp::cosine_hemisphere(numbers);
        else if (choice < mixture.diffuse_choice + mixture.facet_choice)
            above = reflected(o, Ggx(facet_alpha(roughness)).sample_normal(o, numbers));
        else if (mixture.coat_choice > 0)
            above = reflected(o, Ggx(facet_alpha(coat_roughness)).sample_normal(o, numbers));
        if (!(above.z > 0))
            return false;
        in = on_side(above, side);
    }
    const BsdfValue found = evaluated(*this, mixture, out, in);
    if (!(found.pdf > 0))
        return false;
    result = {in, found.value * (std::fabs(in.z) / found.pdf), found.pdf, false};
    return true;
}

} // namespace vantor
