// BSDF concept: what every BSDF offers, as a description and prepared for a hit.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/warp.h"

#include <concepts>

namespace vantor {

// Directions are of unit length and point away from the surface. They are in the frame of the shading normal, whose +Z
// is the front of the surface (the outside of a body): a direction with negative z lies on its back. `wo` is where the
// light goes that a path asks for, `wi` where it comes from.

/// The BSDF for a pair of directions.
struct BsdfValue {
    Color value{}; ///< The bidirectional scattering distribution function, in 1/sr, of radiance.
    float pdf = 0; ///< With which sample() draws `wi`, per solid angle.
};

/// A sampled direction.
struct BsdfSample {
    Vec3 wi;
    Color weight;     ///< value * |cosine| / pdf.
    float pdf;        ///< Per solid angle; unused if the sample is specular.
    bool is_specular; ///< The direction is one of a few, which the sample of a light can never hit.
};

/// A BSDF at a hit, prepared for one `wo`: everything that does not depend on `wi` has been computed.
///
/// evaluate() gives the value and the pdf at once, pdf() the pdf alone. sample() draws `wi` with that pdf from numbers
/// that are uniform in [0, 1): `u` chooses within a lobe, `uc` chooses the lobe. It is false if nothing is scattered;
/// the sample is then undefined. Specular samples have no part in evaluate() and pdf().
template <class Prepared>
concept PreparedBsdf = requires(const Prepared bsdf, Vec3 wi, Point2f u, float uc, BsdfSample &sample) {
    { bsdf.evaluate(wi) } -> std::same_as<BsdfValue>;
    { bsdf.pdf(wi) } -> std::same_as<float>;
    { bsdf.sample(u, uc, sample) } -> std::same_as<bool>;
};

/// A BSDF as the script describes it, from which a `Prepared` is made for every hit.
///
/// albedo() is the colour: about the fraction that is scattered of light from everywhere. is_specular() says that every
/// sample is specular, so that evaluate() is 0; transmits() that light may leave on the other side than where the path
/// arrives. Materials may set the colour, multiply it by a factor (both 0 to 1) and
/// set the roughness, 0 to 1, whose square is the alpha of microfacets (Burley, in the course "Practical
/// Physically-Based Shading in Film and Game Production", SIGGRAPH 2012); a BSDF without roughness ignores it.
template <class Description>
concept DescribedBsdf = requires(const Description description, Description changed, Color color, float roughness) {
    requires PreparedBsdf<typename Description::Prepared>;
    requires std::constructible_from<typename Description::Prepared, const Description &, Vec3>; // for a wo
    { description.albedo() } -> std::same_as<Color>;
    { description.is_specular() } -> std::same_as<bool>;
    { description.transmits() } -> std::same_as<bool>;
    { changed.set_color(color) } -> std::same_as<void>;
    { changed.tint(color) } -> std::same_as<void>;
    { changed.set_roughness(roughness) } -> std::same_as<void>;
};

} // namespace vantor
