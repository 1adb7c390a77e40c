// Light lanes: lights that are sampled for several points at once.
#include "libvantor/world/light_lanes.h"

namespace vantor {

VANTOR_VECTORIZED void sample_by_area(const FlatEmitterLanes &__restrict emitters,
                                      const Lanes<LightChoice> &__restrict choices, const Vec3Lanes &__restrict points,
                                      const Lanes<Point2f> &__restrict numbers, LightSampleLanes &__restrict result,
                                      Mask &__restrict are_near) {
    // Pairs are taken apart beforehand: the loop below then reads lanes only.
    Lanes<float> u, v, pmf;
    for (std::size_t i = 0; i < lane_count; ++i) {
        u[i] = numbers[i].u;
        v[i] = numbers[i].v;
        pmf[i] = choices[i].pmf;
    }
    for (std::size_t i = 0; i < lane_count; ++i) {
        const FlatEmitter emitter = emitters[i];
        const bool is_set = emitters.are_set[i] != 0;
        const FlatEmitter::Seen seen = emitter.seen(points[i], emitter.sample_polygon({u[i], v[i]}));
        const float pdf = seen.area_pdf * pmf[i];
        const bool is_usable = (pdf > 0) & (pdf <= std::numeric_limits<float>::max());
        are_near[i] = is_set & emitter.is_near(points[i]);
        result.may_arrive[i] = is_set & (seen.cosine > 0) & is_usable;
        result.to_light.set(i, seen.to_light);
        result.end.set(i, seen.end);
        result.is_infinite[i] = false;
        result.is_delta[i] = false;
        result.contribution.set(i, emitter.emitted * (1 / pdf));
        result.pdf[i] = pdf;
    }
}

} // namespace vantor
