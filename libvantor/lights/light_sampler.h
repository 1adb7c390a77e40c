// Light sampler: which light to sample at a point.
#pragma once

#include "libvantor/base/numbers.h"

#include <concepts>
#include <cstdint>

namespace vantor {

/// Where light is to arrive.
struct LightSampleContext {
    Vec3 point;

    /// Of the surface, unit length, on the side that is to be lit. Zero in a medium, where light from both sides
    /// counts, and where the choice shall not depend on it.
    Vec3 normal;

    /// Whether BSDF samples, or those of a phase function, find lights from the point as well, and are weighed against
    /// light samples (multiple importance sampling). Light that is nearly the same from everywhere is then left to
    /// them.
    bool has_bsdf_samples = false;

    // Implicit: a point alone will do.
    LightSampleContext(Vec3 its_point, Vec3 its_normal = {}) : point(its_point), normal(its_normal) {}
};

/// A light that was chosen.
struct LightChoice {
    std::uint32_t light; ///< Its index. Meaningless if the probability is 0.
    float pmf;           ///< The probability of this choice; 0 if none was made.
};

/// A strategy of choosing among lights, which are counted from 0.
///
/// - `sample(reference, u)`: a light for a number u in [0, 1), with the probability of this choice.
/// - `pmf(reference, light)`: the probability with which sample() chooses that light for the same reference. Over all
///   lights the sum is at most 1; the rest is the probability that none is chosen.
template <class Sampler>
concept LightSampler = requires(const Sampler &sampler, const LightSampleContext &reference, double u,
                                std::uint32_t light) {
    { sampler.sample(reference, u) } -> std::same_as<LightChoice>;
    { sampler.pmf(reference, light) } -> std::same_as<float>;
};

} // namespace vantor
