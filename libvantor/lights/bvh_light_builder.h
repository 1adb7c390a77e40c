// BVH light builder: puts finite lights into the nodes of a tree.
#pragma once

#include "libvantor/lights/bvh_light_sampler.h"

namespace vantor {

/// The nodes of a tree over the lights, the root first; none if there are none. The lights are reordered.
std::vector<BvhLightSampler::Node> build_light_nodes(std::span<BvhLightSampler::FiniteLight> lights);

} // namespace vantor
