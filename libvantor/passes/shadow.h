// Shadow: how much of the sampled light arrives.
#pragma once

#include "libvantor/world/world.h"

namespace vantor {

/// The ways of sampled light, seen from where it is to arrive.
struct LightWays {
    std::vector<Segment> segments;
    std::vector<MediumStack> media; ///< In which each segment starts.

    std::size_t size() const { return segments.size(); }
    void clear() {
        segments.clear();
        media.clear();
    }
};

/// The fraction of the light on each way that arrives, past surfaces and through media. Light that a surface would bend
/// does not arrive on a straight way.
void transmit(const LightWays &ways, const World &world, std::vector<Color> &fractions);

} // namespace vantor
