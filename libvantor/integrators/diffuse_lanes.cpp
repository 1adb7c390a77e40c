// Diffuse lanes: the diffuse surfaces of a chunk of vertices, side by side.
#include "libvantor/integrators/diffuse_lanes.h"

#include "libvantor/integrators/mis.h"

namespace vantor {

// What a sampled light brings: throughput * value * cosine * radiance / pdf.
VANTOR_VECTORIZED void reflect(const DiffuseLanes &__restrict surfaces, const CarriedLanes &__restrict carried,
                               const LightSampleLanes &__restrict lights, ReflectedLanes &__restrict result) {
    for (std::size_t i = 0; i < lane_count; ++i) {
        const Vec3 to_light = lights.to_light[i];
        const BsdfValue scattered = surfaces.bsdf(i).evaluate(to_light);
        const float weight =
            mis_weight(lights.is_delta[i] != 0, lights.pdf[i], scattered.pdf * carried.ray_fraction[i]);
        const Vec3 start = surfaces.start(i, to_light);
        const Vec3 to_end = lights.end[i] - start;
        const bool is_infinite = lights.is_infinite[i] != 0;
        const bool is_set = surfaces.are_set[i] != 0;
        const bool may_arrive = lights.may_arrive[i] != 0;
        const bool is_dark = is_black(scattered.value);
        result.are_lit[i] = is_set & may_arrive & !is_dark;
        result.start.set(i, start);
        result.direction.x[i] = is_infinite ? to_light.x : to_end.x;
        result.direction.y[i] = is_infinite ? to_light.y : to_end.y;
        result.direction.z[i] = is_infinite ? to_light.z : to_end.z;
        result.radiance.set(i, carried.throughput[i] * scattered.value * lights.contribution[i] * weight);
    }
}

VANTOR_VECTORIZED void scatter(const DiffuseLanes &__restrict surfaces, const Lanes<Point2f> &__restrict numbers,
                               ScatteredLanes &__restrict result) {
    for (std::size_t i = 0; i < lane_count; ++i) {
        BsdfSample next{};
        result.are_set[i] = surfaces.bsdf(i).sample(numbers[i], 0, next);
        result.start.set(i, surfaces.start(i, next.wi));
        result.direction.set(i, next.wi);
        result.pdf[i] = next.pdf;
    }
}

} // namespace vantor
