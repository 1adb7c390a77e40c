// Plastic: a diffuse body under a clear coat, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_concept.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

class PlasticBsdf;

/// Reflects like a glossy paint, on both sides.
///
/// The coat reflects by Fresnel's equations. The body scatters the light that the coat lets through, and the coat
/// reflects part of that back to the body, again and again. With the coat's albedo E, whose mean is E', the body's
/// value is
///
///     (1 - E(wo)) (1 - E(wi)) / (pi (1 - E')) * color (1 - I) / (1 - color I),    I = 1 - (1 - E') / ior^2,
///
/// where I is the albedo of the coat from inside. A white body thus reflects all light that arrives, and the value is
/// reciprocal. Kelemen, Szirmay-Kalos, "A Microfacet Based Coupled Specular-Matte BRDF Model with Importance Sampling",
/// 2001; the reflections inside as in Wolff, "Diffuse-reflectance Model for Smooth Dielectric Surfaces", 1994, but in
/// all directions alike.
struct Plastic {
    using Prepared = PlasticBsdf;

    Color color;     ///< Of the body, 0 to 1.
    float ior = 1.5; ///< The index of refraction of the coat, above 1.
    float alpha = 0; ///< The coat's roughness, squared; smooth below Ggx::least_alpha.

    Color albedo() const;
    bool is_specular() const { return false; }
    bool transmits() const { return false; }
    void set_color(Color value) { color = value; }
    void tint(Color factor) { color *= factor; }
    void set_roughness(float roughness) { alpha = Ggx::alpha_of(roughness); }
};

/// Plastic, prepared for a hit.
class PlasticBsdf {
  public:
    PlasticBsdf(const Plastic &plastic, Vec3 wo);

    BsdfValue evaluate(Vec3 wi) const;
    float pdf(Vec3 wi) const;
    bool sample(Point2f u, float uc, BsdfSample &sample) const;

  private:
    bool has_smooth_coat() const { return alpha < Ggx::least_alpha; }

    // With `wi` on the upper side, as `o`.
    BsdfValue reflection(Vec3 i) const;

    float alpha;
    float ior;
    float side;             // -1 if wo lies on the back
    Vec3 o;                 // wo, turned to the upper side
    float r0;               // the coat's reflectance at normal incidence
    float coat_albedo;      // for wo
    float mean_coat_albedo; // over all cosines
    Color body_albedo;      // of the light that enters, the fraction that leaves again
    float coat_probability; // of sampling the coat
};

} // namespace vantor
