// Plastic: a diffuse body under a clear coat, smooth or rough.
#include "libvantor/scattering/plastic.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

namespace {

// What coat and body do with light that leaves with one cosine.
struct Layers {
    float r0;
    float coat;        // its albedo
    float mean_coat;   // over all cosines
    Color body;        // of the light that enters, the fraction that leaves again
    float coat_choice; // the probability of sampling the coat

    Layers(const Plastic &plastic, float cosine)
        : r0(normal_reflectance(plastic.ior)), coat(glossy_albedo(cosine, plastic.alpha).of(r0)),
          mean_coat(mean_glossy_albedo(plastic.alpha).of(r0)) {
        const float inside = 1 - (1 - mean_coat) / (plastic.ior * plastic.ior);
        const auto leaving = [&](float color) { return color * (1 - inside) / (1 - color * inside); };
        body = {leaving(plastic.color.r), leaving(plastic.color.g), leaving(plastic.color.b)};
        coat_choice = coat / (coat + (1 - coat) * largest_component(body));
    }
};

bool is_smooth(const Plastic &plastic) { return plastic.alpha < Ggx::least_alpha; }

// Both directions lie above it.
BsdfValue evaluated(const Plastic &plastic, const Layers &layers, Vec3 o, Vec3 i) {
    const float enters = 1 - glossy_albedo(i.z, plastic.alpha).of(layers.r0);
    BsdfValue found{layers.body * ((1 - layers.coat) * enters * inverse_pi / (1 - layers.mean_coat)),
                    (1 - layers.coat_choice) * warp::cosine_hemisphere_pdf(i.z)};
    if (is_smooth(plastic))
        return found;

    const Vec3 half = normalized(o + i);
    const Ggx facets(plastic.alpha);
    const float share = schlick_share(dot(o, half));
    const float value = (layers.r0 * (1 - share) + share) * facets.reflection(o, i, half);
    found.value += Color{value, value, value};
    found.pdf += layers.coat_choice * facets.reflection_pdf(o, half);
    return found;
}

} // namespace

BsdfValue Plastic::evaluate(Vec3 out, Vec3 in) const {
    if (!(out.z * in.z > 0))
        return {};
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    return evaluated(*this, Layers(*this, o.z), o, on_side(in, side));
}

bool Plastic::sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const {
    if (out.z == 0)
        return false;
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const Layers layers(*this, o.z);
    const bool is_coat = choice < layers.coat_choice;
    if (is_coat && is_smooth(*this)) {
        const float weight = layers.coat / layers.coat_choice;
        result = {{-out.x, -out.y, out.z}, {weight, weight, weight}, 0, true};
        return true;
    }
    const Vec3 i = is_coat ? reflected(o, Ggx(alpha).sample_normal(o, numbers)) : warp::cosine_hemisphere(numbers);
    if (!(i.z > 0))
        return false;
    const BsdfValue found = evaluated(*this, layers, o, i);
    result = {on_side(i, side), found.value * (i.z / found.pdf), found.pdf, false};
    return found.pdf > 0;
}

Color Plastic::albedo() const {
    const Layers layers(*this, 1);
    return layers.body * (1 - layers.mean_coat) + Color{layers.mean_coat, layers.mean_coat, layers.mean_coat};
}

void Plastic::set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }

} // namespace vantor
