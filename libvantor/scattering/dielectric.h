// Dielectric: a clear boundary, of glass or water, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_concept.h"
#include "libvantor/scattering/dielectric_compensation.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

class DielectricBsdf;

/// Reflects a part of the light and refracts the rest. The outside is the front.
///
/// Refraction changes radiance: radiance over the squared index of refraction stays the same, because the same light
/// fills another solid angle. So all values and weights of refraction hold the squared ratio of the indices, of the
/// side of `wo` over that of `wi`. A ray that goes into a body and out again has both factors, which cancel. Facets
/// lose nothing (DielectricCompensation).
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
    /// Of a boundary that nobody asks.
    DielectricBsdf() = default;

    DielectricBsdf(const Dielectric &dielectric, Vec3 wo);

    BsdfValue evaluate(Vec3 wi) const;
    float pdf(Vec3 wi) const { return evaluate(wi).pdf; } // shares nearly all of the work
    bool sample(Point2f u, float uc, BsdfSample &sample) const;

  private:
    BsdfSample specular_sample(float uc) const;

    // With `wi` turned as `o` is: what single facets scatter.
    BsdfValue by_facets(Vec3 i) const;
    bool sample_facets(Point2f u, float uc, Vec3 &i, BsdfValue &found) const;

    // The rest is added to it.
    BsdfValue compensated(Vec3 i, BsdfValue by_facets) const;

    Color color; // of the refracted light
    float alpha = 0;
    bool is_specular = true;
    float side = 1;  // -1 if wo lies on the back
    Vec3 o;          // wo, turned to the upper side
    float ratio = 1; // the index of refraction of the other side over that of the side of wo
    DielectricCompensation compensation;
};

} // namespace vantor
