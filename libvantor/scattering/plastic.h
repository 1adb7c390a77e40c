// Plastic: a diffuse body under a clear coat, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_sample.h"

namespace vantor {

/// Reflects like a glossy paint, on both sides.
///
/// The coat reflects with Schlick's approximation. What it lets through, the body scatters and the coat partly throws
/// back, again and again. With the coat's albedo E, of which E' is the mean, the body's value is
///
///     (1 - E(out)) (1 - E(in)) / (pi (1 - E')) * color (1 - I) / (1 - color I),    I = 1 - (1 - E') / ior^2,
///
/// where I is the albedo of the coat from inside. A white body thus reflects all light that comes to it, and the two
/// directions may be exchanged. Kelemen, Szirmay-Kalos, "A Microfacet Based Coupled Specular-Matte BRDF Model with
/// Importance Sampling", 2001; the reflections inside as in Wolff, "Diffuse-reflectance Model for Smooth Dielectric
/// Surfaces", 1994, but in all directions alike.
struct Plastic {
    Color color;     ///< Of the body, 0 to 1.
    float ior = 1.5; ///< The index of refraction of the coat, above 1.
    float alpha = 0; ///< The coat's roughness, squared; smooth below Ggx::least_alpha.

    BsdfValue evaluate(Vec3 out, Vec3 in) const;
    bool sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const;
    Color albedo() const;
    bool is_specular() const { return false; }
    bool transmits() const { return false; }
    void set_color(Color value) { color = value; }
    void tint(Color factor) { color *= factor; }
    void set_roughness(float roughness);
};

} // namespace vantor
