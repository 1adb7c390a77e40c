// Shadow rays: how much of the sampled light arrives.
#pragma once

#include "libvantor/world/world.h"

namespace vantor {

/// The ways of sampled light, seen from where it is to arrive.
struct ShadowRays {
    std::vector<Segment> segments;
    std::vector<MediumStack> media; ///< In which each segment starts.

    /// One that starts in those media; false if rays cannot follow it.
    bool add(Vec3 from, const MediumStack &around, const LightSample &light) {
        const Segment way =
            light.is_distant ? Segment{from, light.to_light, INFINITY} : Segment{from, light.end - from, 1};
        if (!is_traceable(way.from, way.direction))
            return false;
        segments.push_back(way);
        media.push_back(around);
        return true;
    }
    std::size_t size() const { return segments.size(); }
    void clear() {
        segments.clear();
        media.clear();
    }
};

/// The fraction of the light on each way that arrives, past surfaces and through media. Light that a surface would bend
/// does not arrive on a straight way.
void transmit(const ShadowRays &ways, const World &world, std::vector<Color> &fractions);

} // namespace vantor
