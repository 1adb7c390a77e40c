// Path: the light that arrives along a ray.
#pragma once

#include "libvantor/world/world.h"

namespace vantor {

/// An unbiased estimate of the radiance that arrives at the ray's origin from its direction, by one random path. Every
/// number the path uses comes from the sampler, from that dimension on.
Color estimate_radiance(Ray ray, const World &world, const Sampler &sampler, std::uint32_t dimension);

} // namespace vantor
