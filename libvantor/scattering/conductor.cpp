// Conductor: a metal, smooth or rough.
#include "libvantor/scattering/conductor.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

Scattered Conductor::evaluate(Vec3 out, Vec3 in) const {
    if (is_specular() || !(out.z * in.z > 0))
        return {};
    const float side = std::copysign(1.0f, out.z);
    const Vec3 o = on_side(out, side);
    const Vec3 i = on_side(in, side);
    const Vec3 half = normalized(o + i);
    const Ggx facets(alpha);
    return {color * conductor_reflectance(dot(o, half), eta, k) * facets.reflection(o, i, half),
            facets.reflection_density(o, half)};
}

bool Conductor::sample(Vec3 out, Pair numbers, float, ScatteringSample &result) const {
    const float side = std::copysign(1.0f, out.z);
    if (is_specular()) {
        result = {{-out.x, -out.y, out.z}, color * conductor_reflectance(side * out.z, eta, k), 0, true};
        return out.z != 0;
    }
    const Vec3 o = on_side(out, side);
    const Ggx facets(alpha);
    const Vec3 half = facets.sample_normal(o, numbers);
    const Vec3 i = reflected(o, half);
    if (!(i.z > 0))
        return false;
    const float cosine = std::clamp(dot(o, half), 0.0f, 1.0f);
    result = {on_side(i, side),
              color * conductor_reflectance(cosine, eta, k) * (facets.visible(o, i) / facets.visible(o)),
              facets.reflection_density(o, half), false};
    return true;
}

Color Conductor::albedo() const { return color * conductor_reflectance(1, eta, k); }

bool Conductor::is_specular() const { return alpha < Ggx::least_alpha; }

void Conductor::set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }

} // namespace vantor
