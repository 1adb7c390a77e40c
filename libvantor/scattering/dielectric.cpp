// Dielectric: a clear boundary, smooth or rough. Walter, Marschner, Li, Torrance, "Microfacet Models for Refraction
// through Rough Surfaces", 2007; the numbers of equations are theirs.
#include "libvantor/scattering/dielectric.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

namespace {

// Nearer to 1 than this, an index of refraction bends light too little for floats to tell by which facet.
constexpr float least_contrast = 0.01f;

// The way on of light from `direction`, which the normal is turned to.
Vec3 refracted(Vec3 direction, Vec3 normal, float cosine, float refracted_cosine, float ratio) {
    return normal * (cosine / ratio - refracted_cosine) - direction * (1 / ratio);
}

} // namespace

BsdfValue Dielectric::evaluate(Vec3 out, Vec3 in) const {
    const float sides = out.z * in.z;
    if (is_specular() || sides == 0)
        return {};
    // Seen from the side of `out`.
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const Vec3 i = on_side(in, side);
    const float ratio = out.z > 0 ? ior : 1 / ior;
    const Ggx facets(alpha);

    if (sides > 0) {
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
    // Equation 21; the square of the ratio, which the pdf has, is left out of the value as radiance wants it.
    const float value = refracts * facets.distribution(half) * facets.visible(o) * facets.visible(i) * out_cosine *
                        in_cosine / (o.z * -i.z * square);
    // Equation 17.
    const float pdf = refracts * facets.normal_pdf(o, half) * ratio * ratio * in_cosine / square;
    return {color * value, pdf};
}

bool Dielectric::sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const {
    if (out.z == 0)
        return false;
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const float ratio = out.z > 0 ? ior : 1 / ior;
    const float scale = 1 / (ratio * ratio); // of radiance
    if (is_specular()) {
        const Refraction refraction = refraction_of(o.z, ratio);
        if (choice < refraction.reflectance)
            result = {{-out.x, -out.y, out.z}, {1, 1, 1}, 0, true};
        else
            result = {on_side(refracted(o, {0, 0, 1}, o.z, refraction.cosine, ratio), side), color * scale, 0, true};
        return true;
    }

    const Ggx facets(alpha);
    const Vec3 half = facets.sample_normal(o, numbers);
    const float cosine = std::clamp(dot(o, half), 0.0f, 1.0f);
    const Refraction refraction = refraction_of(cosine, ratio);
    if (choice < refraction.reflectance) {
        const Vec3 i = reflected(o, half);
        if (!(i.z > 0))
            return false;
        const float weight = facets.visible(o, i) / facets.visible(o);
        result = {
            on_side(i, side), {weight, weight, weight}, refraction.reflectance * facets.reflection_pdf(o, half), false};
        return true;
    }
    const Vec3 i = normalized(refracted(o, half, cosine, refraction.cosine, ratio));
    if (!(i.z < 0))
        return false;
    const Vec3 sum = o + i * ratio;
    const float pdf =
        (1 - refraction.reflectance) * facets.normal_pdf(o, half) * ratio * ratio * refraction.cosine / dot(sum, sum);
    result = {on_side(i, side), color * (facets.visible(i) * scale), pdf, false};
    return pdf > 0;
}

Color Dielectric::albedo() const {
    const float reflectance = normal_reflectance(ior);
    return color * (1 - reflectance) + Color{reflectance, reflectance, reflectance};
}

bool Dielectric::is_specular() const { return alpha < Ggx::least_alpha || std::fabs(ior - 1) < least_contrast; }

void Dielectric::set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }

} // namespace vantor
