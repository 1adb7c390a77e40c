// Dielectric: a clear boundary, smooth or rough. Walter, Marschner, Li, Torrance, "Microfacet Models for Refraction
// through Rough Surfaces", 2007; the numbers of equations are theirs.
#include "libvantor/scattering/dielectric.h"

#include "libvantor/scattering/fresnel.h"

namespace vantor {

namespace {

// With an index of refraction nearer to 1 than this, light is bent so little that floats cannot tell by which facet.
constexpr float least_contrast = 0.01f;

} // namespace

Color Dielectric::albedo() const {
    const float reflectance = normal_reflectance(ior);
    return color * (1 - reflectance) + Color{reflectance, reflectance, reflectance};
}

bool Dielectric::is_specular() const { return alpha < Ggx::least_alpha || std::fabs(ior - 1) < least_contrast; }

DielectricBsdf::DielectricBsdf(const Dielectric &dielectric, Vec3 wo)
    : color(dielectric.color), alpha(dielectric.alpha), is_specular(dielectric.is_specular()),
      side(std::copysign(1.0f, wo.z)), o(on_side(wo, side)), ratio(wo.z > 0 ? dielectric.ior : 1 / dielectric.ior) {
    if (!is_specular)
        compensation = {alpha, o.z, ratio};
}

BsdfValue DielectricBsdf::by_facets(Vec3 i) const {
    const Ggx facets(alpha);
    if (i.z > 0) {
        const Vec3 half = normalized(o + i);
        const float reflectance = refraction_of(dot(o, half), ratio).reflectance;
        const float value = reflectance * facets.reflection(o, i, half);
        return {{value, value, value}, reflectance * facets.reflection_pdf(o, half)};
    }

    // Equation 16, with the normal turned up.
    const Vec3 sum = o + i * ratio;
    const float square = dot(sum, sum);
    const Vec3 half = sum * ((sum.z < 0 ? -1.0f : 1.0f) / std::sqrt(square));
    const float out_cosine = dot(o, half);
    const float in_cosine = -dot(i, half);
    if (!(out_cosine > 0 && in_cosine > 0))
        return {};
    const float refracts = 1 - refraction_of(out_cosine, ratio).reflectance;
    // Equation 21. The value leaves out the square of the ratio, which the pdf has: radiance changes by it.
    const float value = refracts * facets.distribution(half) * facets.visible(o) * facets.visible(i) * out_cosine *
                        in_cosine / (o.z * -i.z * square);
    // Equation 17.
    const float pdf = refracts * facets.normal_pdf(o, half) * ratio * ratio * in_cosine / square;
    return {color * value, pdf};
}

BsdfValue DielectricBsdf::compensated(Vec3 i, BsdfValue by_facets) const {
    const float lost = compensation.lost();
    if (lost == 0)
        return by_facets;
    const bool is_same_side = i.z > 0;
    const float cosine = std::fabs(i.z);
    const float value = compensation.value(cosine, is_same_side);
    const float stays = compensation.reflected();
    return {by_facets.value + (is_same_side ? Color{value, value, value} : color * (value / (ratio * ratio))),
            (1 - lost) * by_facets.pdf +
                lost * (is_same_side ? stays : 1 - stays) * warp::cosine_hemisphere_pdf(cosine)};
}

BsdfValue DielectricBsdf::evaluate(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    if (is_specular || o.z * i.z == 0)
        return {};
    return compensated(i, by_facets(i));
}

BsdfSample DielectricBsdf::specular_sample(float uc) const {
    const Refraction refraction = refraction_of(o.z, ratio);
    if (uc < refraction.reflectance)
        return {{-o.x, -o.y, side * o.z}, {1, 1, 1}, 0, true};
    const Vec3 i = refracted(o, {0, 0, 1}, o.z, refraction.cosine, ratio);
    return {on_side(i, side), color * (1 / (ratio * ratio)), 0, true};
}

bool DielectricBsdf::sample_facets(Point2f u, float uc, Vec3 &i, BsdfValue &found) const {
    const Ggx facets(alpha);
    const Vec3 half = facets.sample_normal(o, u);
    const float cosine = std::clamp(dot(o, half), 0.0f, 1.0f);
    const Refraction refraction = refraction_of(cosine, ratio);
    Color weight; // value * |cosine| / pdf, which is known better than its factors
    if (uc < refraction.reflectance) {
        i = reflected(o, half);
        if (!(i.z > 0))
            return false;
        const float visible = facets.visible(o, i) / facets.visible(o);
        weight = {visible, visible, visible};
        found.pdf = refraction.reflectance * facets.reflection_pdf(o, half);
    } else {
        i = normalized(refracted(o, half, cosine, refraction.cosine, ratio));
        if (!(i.z < 0))
            return false;
        const Vec3 sum = o + i * ratio;
        weight = color * (facets.visible(i) * (1 / (ratio * ratio)));
        found.pdf = (1 - refraction.reflectance) * facets.normal_pdf(o, half) * ratio * ratio * refraction.cosine /
                    dot(sum, sum);
    }
    found.value = weight * (found.pdf / std::fabs(i.z));
    return found.pdf > 0;
}

bool DielectricBsdf::sample(Point2f u, float uc, BsdfSample &sample) const {
    if (o.z == 0)
        return false;
    if (is_specular) {
        sample = specular_sample(uc);
        return true;
    }

    const float lost = compensation.lost();
    Vec3 i;
    BsdfValue single;
    if (uc < lost) {
        i = warp::cosine_hemisphere(u);
        if (!(i.z > 0))
            return false;
        if (uc >= lost * compensation.reflected())
            i.z = -i.z;
        single = by_facets(i);
    } else if (!sample_facets(u, (uc - lost) / (1 - lost), i, single)) {
        return false;
    }
    const BsdfValue found = compensated(i, single);
    sample = {on_side(i, side), found.value * (std::fabs(i.z) / found.pdf), found.pdf, false};
    return found.pdf > 0;
}

} // namespace vantor
