// BSDF samples, and what every BSDF offers.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/warp.h"

namespace vantor {

// Directions are of unit length and point away from the surface. They are in the frame of the shading normal, whose +Z
// is the front of the surface (the outside of a body): a direction with negative z lies on its back. `out` is where
// the light goes that a path asks for, `in` where it comes from. Every lobe has:
//
//     BsdfValue evaluate(Vec3 out, Vec3 in) const;
//     bool sample(Vec3 out, Point2f numbers, float choice, BsdfSample &result) const;
//     Color albedo() const;
//     bool is_specular() const;
//     bool transmits() const;
//     void set_color(Color value);
//     void tint(Color factor);
//     void set_roughness(float roughness);
//
// sample() draws `in` with the pdf that evaluate() tells; false if nothing is scattered. The numbers and the choice
// are uniform in [0, 1). albedo() is the colour: about the fraction that is scattered of light from everywhere.
// is_specular() says that every sample is, so that evaluate() has nothing to tell. transmits() says whether light may
// come out on the other side. A pattern may set the colour and the roughness, 0 to 1; the square of the roughness is
// the alpha of microfacets (Burley, in the course "Practical Physically-Based Shading in Film and Game Production",
// SIGGRAPH 2012). A lobe without roughness ignores it.

/// How much light goes from one direction to another.
struct BsdfValue {
    Color value{}; ///< The bidirectional scattering distribution function (BSDF), in 1/sr, of radiance.
    float pdf = 0; ///< With which sample() draws `in`, per solid angle.
};

/// A direction to go on.
struct BsdfSample {
    Vec3 in;
    Color weight;     ///< value * |cosine| / pdf.
    float pdf;        ///< Per solid angle; unused if it is specular.
    bool is_specular; ///< The direction is one of a few, so that a light's sample can never be it.
};

} // namespace vantor
