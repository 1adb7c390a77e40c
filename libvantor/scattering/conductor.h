// Conductor: a metal, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_concept.h"
#include "libvantor/scattering/energy_compensation.h"

namespace vantor {

class ConductorBsdf;

/// Reflects like a metal, on both sides. A rough one also reflects the light that meets several of its facets:
/// EnergyCompensation.
struct Conductor {
    using Prepared = ConductorBsdf;

    Color eta;            ///< The index of refraction, 0 or more.
    Color k;              ///< The index of extinction, 0 or more.
    Color color{1, 1, 1}; ///< What the reflected light is multiplied by, 0 to 1.
    float alpha = 0;      ///< Roughness, squared; a mirror below Ggx::least_alpha.

    Color albedo() const;
    bool is_specular() const { return alpha < Ggx::least_alpha; }
    bool transmits() const { return false; }
    void set_color(Color value) { color = value; }
    void tint(Color factor) { color *= factor; }
    void set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }
};

/// Conductor, prepared for a hit.
class ConductorBsdf {
  public:
    ConductorBsdf(const Conductor &conductor, Vec3 wo);

    BsdfValue evaluate(Vec3 wi) const;
    float pdf(Vec3 wi) const;
    bool sample(Point2f u, float uc, BsdfSample &sample) const;

  private:
    // With `wi` and the half vector on the upper side, as `o`.
    BsdfValue reflection(Vec3 i, Vec3 half) const;
    float reflection_pdf(Vec3 i, Vec3 half) const;

    Conductor metal;
    float side; // -1 if wo lies on the back
    Vec3 o;     // wo, turned to the upper side
    // Of a rough metal only.
    EnergyCompensation compensation;
    float compensation_probability = 0; // of sampling it
};

} // namespace vantor
