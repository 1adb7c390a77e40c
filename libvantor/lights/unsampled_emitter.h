// Unsampled emitter: a surface that shines, but whose points are not sampled. Only rays find its light.
#pragma once

#include "libvantor/lights/light_concept.h"

namespace vantor {

/// Black by its bounds, so that it is never chosen.
struct UnsampledEmitter {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = false;

    Color emitted;

    LightBounds bounds() const { return {{}, {}, {0, 0, 1}, -1, 0, 0}; }
    bool sample(Vec3, Point2f, EmissionSample &) const { return false; }
    Color radiance() const { return emitted; }
    float pdf(Vec3, Vec3, Vec3) const { return 0; }
};

} // namespace vantor
