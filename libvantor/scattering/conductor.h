// Conductor: a metal, smooth or rough.
#pragma once

#include "libvantor/scattering/bsdf_sample.h"

namespace vantor {

/// Reflects like a metal, on both sides. What a rough one's facets throw to each other is not lost: EnergyCompensation.
struct Conductor {
    Color eta;            ///< The index of refraction, 0 or more.
    Color k;              ///< The index of extinction, 0 or more.
    Color color{1, 1, 1}; ///< What the reflected light is multiplied by, 0 to 1.
    float alpha = 0;      ///< Roughness, squared; a mirror below Ggx::least_alpha.

    BsdfValue evaluate(Vec3 out, Vec3 in) const;
    bool sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const;
    Color albedo() const;
    bool is_specular() const;
    bool transmits() const { return false; }
    void tint(Color factor) { color *= factor; }
    void set_color(Color value) { color = value; }
    void set_roughness(float roughness);
};

} // namespace vantor
