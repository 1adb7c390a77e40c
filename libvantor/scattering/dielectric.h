// Dielectric: a clear boundary, of glass or water, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_concept.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

class DielectricBsdf;

/// Reflects a part of the light and refracts the rest. The outside is the front.
///
/// Refraction changes radiance: radiance over the squared index of refraction stays the same, because the same light
/// fills another solid angle. So all values and weights of refraction hold the squared ratio of the indices, of the
/// side of `wo` over that of `wi`. A ray that goes into a body and out again has both factors, which cancel.
struct Dielectric {
    using Prepared = DielectricBsdf;

    float ior;            ///< The index of refraction of the inside over that of the outside, above 0.
    Color color{1, 1, 1}; ///< What the refracted light is multiplied by each time, 0 to 1.
    float alpha = 0;      ///< Roughness, squared; smooth below Ggx::least_alpha.

    Color albedo() const;
    bool is_specular() const;
    bool transmits() const { return true; }
    void set_color(Color value) { color = value; }
    void tint(Color factor) { color *= factor; }
    void set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }
};

/// Dielectric, prepared for a hit.
class DielectricBsdf {
  public:
    DielectricBsdf(const Dielectric &dielectric, Vec3 wo);

    BsdfValue evaluate(Vec3 wi) const;
    float pdf(Vec3 wi) const { return evaluate(wi).pdf; } // shares nearly all of the work
    bool sample(Point2f u, float uc, BsdfSample &sample) const;

  private:
    BsdfSample specular_sample(float uc) const;

    Color color; // of the refracted light
    float alpha;
    bool is_specular;
    float side;  // -1 if wo lies on the back
    Vec3 o;      // wo, turned to the upper side
    float ratio; // the index of refraction of the other side over that of the side of wo
};

} // namespace vantor
