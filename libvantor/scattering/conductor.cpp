// Conductor: a metal, smooth or rough.
#include "libvantor/scattering/conductor.h"

#include "libvantor/scattering/energy_compensation.h"
#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

namespace {

// A rough one, and what it does with light that leaves with one cosine.
struct Rough {
    Ggx facets;
    EnergyCompensation compensation;
    float compensation_choice = 0; // the probability of sampling it

    Rough(const Conductor &metal, float cosine) : facets(metal.alpha) {
        const Color r0 = conductor_reflectance(1, metal.eta, metal.k);
        const GlossyAlbedo once = glossy_albedo(cosine, metal.alpha);
        compensation = {metal.alpha, once, r0};
        const float again = largest_component(compensation.albedo());
        if (again > 0)
            compensation_choice = again / (again + once.of(largest_component(r0)));
    }
};

// Both directions lie above it.
BsdfValue reflection(const Conductor &metal, const Rough &rough, Vec3 o, Vec3 i, Vec3 half) {
    const float cosine = std::clamp(dot(o, half), 0.0f, 1.0f);
    const Color value = conductor_reflectance(cosine, metal.eta, metal.k) * rough.facets.reflection(o, i, half) +
                        rough.compensation.value(i.z);
    return {metal.color * value, (1 - rough.compensation_choice) * rough.facets.reflection_pdf(o, half) +
                                     rough.compensation_choice * warp::cosine_hemisphere_pdf(i.z)};
}

} // namespace

BsdfValue Conductor::evaluate(Vec3 out, Vec3 in) const {
    if (is_specular() || !(out.z * in.z > 0))
        return {};
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const Vec3 i = on_side(in, side);
    return reflection(*this, Rough(*this, o.z), o, i, normalized(o + i));
}

bool Conductor::sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const {
    if (out.z == 0)
        return false;
    const float side = std::copysign(1.0f, out.z);
    if (is_specular()) {
        result = {{-out.x, -out.y, out.z}, color * conductor_reflectance(side * out.z, eta, k), 0, true};
        return true;
    }
    const Vec3 o = on_side(out, side);
    const Rough rough(*this, o.z);
    Vec3 half;
    Vec3 i;
    if (choice < rough.compensation_choice) {
        i = warp::cosine_hemisphere(numbers);
        half = normalized(o + i);
    } else {
        half = rough.facets.sample_normal(o, numbers);
        i = reflected(o, half);
    }
    if (!(i.z > 0))
        return false;
    const BsdfValue found = reflection(*this, rough, o, i, half);
    result = {on_side(i, side), found.value * (i.z / found.pdf), found.pdf, false};
    return found.pdf > 0;
}

Color Conductor::albedo() const { return color * conductor_reflectance(1, eta, k); }

bool Conductor::is_specular() const { return alpha < Ggx::least_alpha; }

void Conductor::set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }

} // namespace vantor
