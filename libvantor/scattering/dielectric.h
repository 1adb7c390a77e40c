// Dielectric: a clear boundary, of glass or water, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_sample.h"

namespace vantor {

/// Reflects a part of the light and refracts the rest. The outside is the front.
///
/// Radiance changes where it is refracted: over the squared index of refraction it stays the same, as the same light
/// fills another solid angle. So all values and weights of refraction hold the squared ratio of the indices, of the
/// side of `out` over that of `in`. A ray into a body and out again has both, which cancel.
struct Dielectric {
    float ior;            ///< The index of refraction of the inside over that of the outside, above 0.
    Color color{1, 1, 1}; ///< What the refracted light is multiplied by each time, 0 to 1.
    float alpha = 0;      ///< Roughness, squared; smooth below Ggx::least_alpha.

    BsdfValue evaluate(Vec3 out, Vec3 in) const;
    bool sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const;
    Color albedo() const;
    bool is_specular() const;
    bool transmits() const { return true; }
    void tint(Color factor) { color *= factor; }
    void set_color(Color value) { color = value; }
    void set_roughness(float roughness);
};

} // namespace vantor
