// Principled: most opaque and clear surfaces, by a few numbers that artists agree on.
#pragma once

#include "libvantor/scattering/dielectric.h"
#include "libvantor/scattering/energy_compensation.h"

namespace vantor {

class PrincipledBsdf;

/// A mixture of metal, a body under a gloss, and glass; with sheen on the body, and a clear coat over all of it. Both
/// sides are alike, except that the glass has its outside in front.
///
/// The parameters, and how they mix, are those of Burley, in the courses "Practical Physically-Based Shading in Film
/// and Game Production", SIGGRAPH 2012, and "Physically Based Shading in Theory and Practice", SIGGRAPH 2015. What
/// differs keeps energy: every layer takes from those below what it reflects itself, for both directions; the metal's
/// facets lose nothing (EnergyCompensation); the coat, too, has GGX facets; and the body's retroreflection is scaled
/// down (Lagarde, de Rousiers, "Moving Frostbite to Physically Based Rendering", SIGGRAPH 2014).
struct Principled {
    using Prepared = PrincipledBsdf;

    Color base_color;         ///< 0 to 1, as all that follows unless stated otherwise.
    float metallic = 0;       ///< The fraction of metal.
    float roughness = 0.5f;   ///< Of all but the coat; at least that of Ggx::least_alpha.
    float specular = 0.5f;    ///< The body's gloss: its reflectance at normal incidence is 0.08 of this.
    float clearcoat = 0;      ///< The fraction of the coat.
    float coat_roughness = 0; ///< At least that of Ggx::least_alpha.
    float sheen = 0;          ///< The fraction of the sheen.
    float transmission = 0;   ///< The fraction of glass in what is not metal.
    float ior = 1.5f;         ///< Of the glass inside over outside, 1.1 to 3.

    Color albedo() const { return base_color; }
    bool is_specular() const { return false; }
    bool transmits() const { return transmission > 0; }
    void set_color(Color value) { base_color = value; }
    void tint(Color factor) { base_color *= factor; }
    void set_roughness(float value) { roughness = value; }
};

/// Principled, prepared for a hit.
class PrincipledBsdf {
  public:
    PrincipledBsdf(const Principled &principled, Vec3 wo);

    BsdfValue evaluate(Vec3 wi) const;
    float pdf(Vec3 wi) const;
    bool sample(Point2f u, float uc, BsdfSample &sample) const;

  private:
    // How much of the light from or to one direction each layer reflects, and keeps from those below it.
    struct Layers {
        float coat;
        float gloss; // on the body
        float sheen;
    };
    Layers layers_at(float cosine) const;
    float coat_at(float cosine) const;
    bool has_glass() const { return glass_fraction > 0; }

    // Of all but the glass, with `wi` on the upper side, as `o`.
    Color reflection(Vec3 i, Vec3 half) const;
    float reflection_pdf(Vec3 i, Vec3 half) const;

    Principled p;
    Ggx facets;
    float side; // -1 if wo lies on the back
    Vec3 o;     // wo, turned to the upper side
    float glass_fraction;
    float body_fraction;
    float body_r0; // reflectances of the body's gloss, at normal and at grazing incidence
    float body_r90;
    float entering; // one over the mean fraction of light that the gloss lets through
    Color r0;       // of the facets of metal and body together, weighted with their fractions
    float r90;
    Layers layers;              // for wo
    EnergyCompensation metal;   // of the metal alone: what the gloss does not reflect at once enters the body
    DielectricBsdf glass;       // of use where there is glass
    float coat_probability = 0; // of sampling each; all 0 if nothing is reflected
    float facet_probability = 0;
    float glass_probability = 0;
    float diffuse_probability = 0; // the body, and the metal's compensation
};

} // namespace vantor
