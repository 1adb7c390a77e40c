// Energy compensation: the light that the facets of rough metal throw to each other before it leaves.
#pragma once

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/glossy_albedo.h"
#include "libvantor/scattering/microfacet.h"

namespace vantor {

/// The part of a reflection that Ggx leaves out: what meets several facets. With the albedo E of facets that reflect
/// everything, of which E' is the mean, and the mean reflectance F' of the facets that there are, the value is
///
///     (1 - E(wo)) (1 - E(wi)) / (pi (1 - E')) * F'^2 E' / (1 - F' (1 - E')).
///
/// The value is reciprocal. With a reflectance of 1, it brings back all that Ggx loses; with less, light is coloured
/// once more at every facet. Kulla, Conty, "Revisiting Physically Based Shading at Imageworks", in the course
/// "Physically Based Shading in Theory and Practice", SIGGRAPH 2017.
class EnergyCompensation {
  public:
    /// For facets that lose nothing.
    EnergyCompensation() = default;

    /// The albedo is glossy_albedo() for wo; r0 is a facet's reflectance at normal incidence, from which it rises to 1
    /// as in Schlick's approximation. The smoothest facets count as without loss.
    EnergyCompensation(float facet_alpha, GlossyAlbedo wo_albedo, Color r0) : alpha(facet_alpha) {
        if (alpha <= Ggx::least_alpha)
            return;
        const float mean = mean_glossy_albedo(alpha).of(1);
        const auto colored = [&](float normal) {
            const float reflectance = mean_schlick_reflectance(normal);
            return reflectance * reflectance * mean / (1 - reflectance * (1 - mean));
        };
        at_wo = Color{colored(r0.r), colored(r0.g), colored(r0.b)} * (1 - wo_albedo.of(1));
        per_loss = inverse_pi / (1 - mean);
    }

    /// The fraction of light from everywhere.
    Color albedo() const { return at_wo; }

    /// The cosine is that of wi. It is sampled with a pdf proportional to the cosine.
    Color value(float cosine) const {
        return per_loss > 0 ? at_wo * (per_loss * (1 - glossy_albedo(cosine, alpha).of(1))) : Color{};
    }

  private:
    float alpha = 0;
    Color at_wo;
    float per_loss = 0;
};

} // namespace vantor
