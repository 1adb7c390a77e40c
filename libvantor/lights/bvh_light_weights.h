// BVH light weights: what the children of a node can bring to a point or a ray.
#pragma once

#include "libvantor/lights/bvh_light_sampler.h"

namespace vantor {

/// The least that may be brought is above 0, and the most is far from an overflow of the sum.
inline constexpr float least_light_weight = 1e-36f;
inline constexpr float most_light_weight = 1e36f;

/// Writes what each child can bring at most, roughly: the irradiance, or without a normal the fluence. 0 if it can
/// bring nothing. Returns the sum.
float weigh(const BvhLightSampler::Node &node, const LightSampleContext &reference, BvhLightSampler::Weights &weights);

/// Likewise for a ray.
float weigh(const BvhLightSampler::Node &node, const LightSampleRay &reference, BvhLightSampler::Weights &weights);

} // namespace vantor
