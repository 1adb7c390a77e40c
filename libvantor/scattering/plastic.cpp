// Plastic: a diffuse body under a clear coat, smooth or rough.
#include "libvantor/scattering/plastic.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"

namespace vantor {

namespace {

// Of the light that enters the body, the fraction that leaves it again.
Color body_albedo_of(const Plastic &plastic, float mean_coat_albedo) {
    const float inside = 1 - (1 - mean_coat_albedo) / (plastic.ior * plastic.ior);
    const auto leaving = [&](float color) { return color * (1 - inside) / (1 - color * inside); };
    return {leaving(plastic.color.r), leaving(plastic.color.g), leaving(plastic.color.b)};
}

} // namespace

Color Plastic::albedo() const {
    const float coat = mean_glossy_albedo(alpha, ior).of(normal_reflectance(ior));
    return body_albedo_of(*this, coat) * (1 - coat) + Color{coat, coat, coat};
}

PlasticBsdf::PlasticBsdf(const Plastic &plastic, Vec3 wo)
    : alpha(plastic.alpha), ior(plastic.ior), side(std::copysign(1.0f, wo.z)), o(on_side(wo, side)),
      r0(normal_reflectance(ior)), coat_albedo(glossy_albedo(o.z, alpha, ior).of(r0)),
      mean_coat_albedo(mean_glossy_albedo(alpha, ior).of(r0)), body_albedo(body_albedo_of(plastic, mean_coat_albedo)),
      coat_probability(coat_albedo / (coat_albedo + (1 - coat_albedo) * largest_component(body_albedo))) {}

BsdfValue PlasticBsdf::reflection(Vec3 i) const {
    const float enters = 1 - glossy_albedo(i.z, alpha, ior).of(r0);
    BsdfValue found{body_albedo * ((1 - coat_albedo) * enters * inverse_pi / (1 - mean_coat_albedo)),
                    (1 - coat_probability) * warp::cosine_hemisphere_pdf(i.z)};
    if (has_smooth_coat())
        return found;

    const Vec3 half = normalized(o + i);
    const Ggx facets(alpha);
    const float value = refraction_of(std::min(dot(o, half), 1.0f), ior).reflectance * facets.reflection(o, i, half);
    found.value += Color{value, value, value};
    found.pdf += coat_probability * facets.reflection_pdf(o, half);
    return found;
}

BsdfValue PlasticBsdf::evaluate(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    return o.z * i.z > 0 ? reflection(i) : BsdfValue();
}

float PlasticBsdf::pdf(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    if (!(o.z * i.z > 0))
        return 0;
    const float body = (1 - coat_probability) * warp::cosine_hemisphere_pdf(i.z);
    return has_smooth_coat() ? body : body + coat_probability * Ggx(alpha).reflection_pdf(o, normalized(o + i));
}

bool PlasticBsdf::sample(Point2f u, float uc, BsdfSample &sample) const {
    if (o.z == 0)
        return false;
    const bool is_coat = uc < coat_probability;
    if (is_coat && has_smooth_coat()) {
        const float weight = coat_albedo / coat_probability;
        sample = {{-o.x, -o.y, side * o.z}, {weight, weight, weight}, 0, true};
        return true;
    }
    const Vec3 i = is_coat ? reflected(o, Ggx(alpha).sample_normal(o, u)) : warp::cosine_hemisphere(u);
    if (!(i.z > 0))
        return false;
    const BsdfValue found = reflection(i);
    sample = {on_side(i, side), found.value * (i.z / found.pdf), found.pdf, false};
    return found.pdf > 0;
}

} // namespace vantor
