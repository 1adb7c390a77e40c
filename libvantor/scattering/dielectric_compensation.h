// Dielectric compensation: the light that the facets of rough glass throw to each other before it leaves.
#pragma once

namespace vantor {

/// The part of a scattering that single facets leave out: what meets several of them. With L the fraction that is lost
/// of light from a direction, L' its mean over the directions of a side, and n the index of refraction of the other
/// side over that of this side, the values are
///
///     R L(wo) L(wi) / (pi L')             on the side of wo, with the mean of that side,
///     T L(wo) L(wi) / (pi L') / n^2       on the other, with the mean of the other side,
///
/// where R + T = 1, so that all of the lost light comes back. T is what a smooth boundary lets through of light from
/// everywhere. The values are reciprocal, because T of the denser side is T of the other over n^2, times L' of the
/// other over L' of its own. After Kulla, Conty, "Revisiting Physically Based Shading at Imageworks", in the course
/// "Physically Based Shading in Theory and Practice", SIGGRAPH 2017.
class DielectricCompensation {
  public:
    /// For facets that lose nothing.
    DielectricCompensation() = default;

    /// For a wo with that cosine, 0 to 1; alpha is Ggx::least_alpha to 1, the ratio is n.
    DielectricCompensation(float alpha, float cosine, float ratio);

    /// L(wo), the fraction of light that is scattered in this way; it is sampled with that probability.
    float lost() const { return at_wo; }

    /// Of it, the fraction that stays on the side of wo: R.
    float reflected() const { return stays; }

    /// For a wi with that cosine, 0 to 1, and without the division by n^2.
    float value(float cosine, bool is_same_side) const;

  private:
    float alpha = 0;
    float ratio = 1;
    float at_wo = 0;
    float stays = 1;
    float per_loss_here = 0; // of wi: its factor in the values
    float per_loss_there = 0;
};

} // namespace vantor
