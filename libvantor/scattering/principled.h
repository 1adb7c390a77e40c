// Principled: most opaque and clear surfaces, by a few numbers that artists agree on.
#pragma once

#include "libvantor/scattering/dielectric.h"

namespace vantor {

/// Metal, body under a gloss, and glass, mixed; sheen on the body, and a clear coat over all of it. It behaves alike on
/// both sides, but that the glass has its outside in front.
///
/// The parameters, and how they mix, are those of Burley, in the courses "Practical Physically-Based Shading in Film
/// and Game Production", SIGGRAPH 2012, and "Physically Based Shading in Theory and Practice", SIGGRAPH 2015. What
/// differs keeps energy: every layer takes from those below what it reflects itself, for both directions; the metal's
/// facets lose nothing (EnergyCompensation); the coat, too, has GGX facets; and the body's retroreflection is scaled
/// down (Lagarde, de Rousiers, "Moving Frostbite to Physically Based Rendering", SIGGRAPH 2014).
struct Principled {
    Color base_color;         ///< 0 to 1, as all that follows is unless said.
    float metallic = 0;       ///< The share of metal.
    float roughness = 0.5f;   ///< Of all but the coat; less than that of Ggx::least_alpha counts as that.
    float specular = 0.5f;    ///< The body's gloss: 0.08 of it is its reflectance straight on.
    float clearcoat = 0;      ///< The share of the coat.
    float coat_roughness = 0; ///< Likewise.
    float sheen = 0;          ///< The share of the sheen.
    float transmission = 0;   ///< The share of glass in what is no metal.
    float ior = 1.5f;         ///< Of the glass inside over outside, 1.1 to 3.

    BsdfValue evaluate(Vec3 out, Vec3 in) const;
    bool sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const;
    Color albedo() const { return base_color; }
    bool is_specular() const { return false; }
    bool transmits() const { return metallic < 1 && transmission > 0; }
    void set_color(Color value) { base_color = value; }
    void tint(Color factor) { base_color *= factor; }
    void set_roughness(float value) { roughness = value; }
};

} // namespace vantor
