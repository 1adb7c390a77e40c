// Shadow rays: how much of the sampled light arrives.
#pragma once

#include "libvantor/world/world.h"

#include <vector>

namespace vantor {

/// Rays from where sampled light is to arrive, to where it comes from.
struct ShadowRays {
    std::vector<Segment> segments;
    // Of each segment; none in a world where nothing may be crossed.
    std::vector<RayStart> starts;
    std::vector<MediumStack> media;

    std::size_t size() const { return segments.size(); }
    void clear() {
        segments.clear();
        media.clear();
        starts.clear();
    }
};

/// The fraction of the light on each shadow ray that arrives, past surfaces and through media, in a world where
/// surfaces may be crossed. Light that a surface would bend does not arrive along a straight line.
void transmit(const ShadowRays &shadow_rays, const World &world, std::vector<Color> &fractions);

} // namespace vantor
