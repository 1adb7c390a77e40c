// Conductor: a metal, smooth or rough.
#include "libvantor/scattering/conductor.h"

#include "libvantor/scattering/fresnel.h"

namespace vantor {

Color Conductor::albedo() const { return color * conductor_reflectance(1, eta, k); }

ConductorBsdf::ConductorBsdf(const Conductor &conductor, Vec3 wo)
    : metal(conductor), side(std::copysign(1.0f, wo.z)), o(on_side(wo, side)) {
    if (metal.is_specular())
        return;
    const Color r0 = conductor_reflectance(1, metal.eta, metal.k);
    const GlossyAlbedo once = glossy_albedo(o.z, metal.alpha);
    compensation = {metal.alpha, once, r0};
    const float again = largest_component(compensation.albedo());
    if (again > 0)
        compensation_probability = again / (again + once.of(largest_component(r0)));
}

float ConductorBsdf::reflection_pdf(Vec3 i, Vec3 half) const {
    return (1 - compensation_probability) * Ggx(metal.alpha).reflection_pdf(o, half) +
           compensation_probability * warp::cosine_hemisphere_pdf(i.z);
}

BsdfValue ConductorBsdf::reflection(Vec3 i, Vec3 half) const {
    const float cosine = std::clamp(dot(o, half), 0.0f, 1.0f);
    const Color value = conductor_reflectance(cosine, metal.eta, metal.k) * Ggx(metal.alpha).reflection(o, i, half) +
                        compensation.value(i.z);
    return {metal.color * value, reflection_pdf(i, half)};
}

BsdfValue ConductorBsdf::evaluate(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    if (metal.is_specular() || !(o.z * i.z > 0))
        return {};
    return reflection(i, normalized(o + i));
}

float ConductorBsdf::pdf(Vec3 wi) const {
    const Vec3 i = on_side(wi, side);
    return metal.is_specular() || !(o.z * i.z > 0) ? 0 : reflection_pdf(i, normalized(o + i));
}

bool ConductorBsdf::sample(Point2f u, float uc, BsdfSample &sample) const {
    if (o.z == 0)
        return false;
    if (metal.is_specular()) {
        sample = {{-o.x, -o.y, side * o.z}, metal.color * conductor_reflectance(o.z, metal.eta, metal.k), 0, true};
        return true;
    }
    Vec3 half;
    Vec3 i;
    if (uc < compensation_probability) {
        i = warp::cosine_hemisphere(u);
        half = normalized(o + i);
    } else {
        half = Ggx(metal.alpha).sample_normal(o, u);
        i = reflected(o, half);
    }
    if (!(i.z > 0))
        return false;
    const BsdfValue found = reflection(i, half);
    sample = {on_side(i, side), found.value * (i.z / found.pdf), found.pdf, false};
    return found.pdf > 0;
}

} // namespace vantor
