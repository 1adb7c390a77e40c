// Path: the light that arrives along a ray. Kajiya, "The Rendering Equation", 1986; the estimator follows Veach,
// "Robust Monte Carlo Methods for Light Transport Simulation", 1997, chapters 8 to 10.
#include "libvantor/passes/path.h"

namespace vantor {

namespace {

// What the numbers of a bounce are for.
enum Dimension : std::uint32_t { light_point, light_choice, reflected_direction, survival, dimensions_per_bounce };

// Multiple importance sampling: the weight of a sample drawn with one density where another could have drawn it too.
// The power heuristic with exponent 2, Veach 9.2.4.
float weight(float density, float other_density) {
    const float square = density * density;
    return square / (square + other_density * other_density);
}

} // namespace

Color estimate_radiance(Ray ray, const World &world, const Sampler &sampler, std::uint32_t dimension) {
    // Roulette from this bounce on. Earlier it costs more in noise than it saves in time, later the other way round.
    constexpr int first_roulette = 3;

    Color radiance;
    Color throughput{1, 1, 1};   // of the path so far: the product of value * cosine / density
    Vec3 vertex = ray.origin;    // the surface point that the ray left
    float direction_density = 0; // with which its direction was drawn there; 0 at the camera

    for (int bounce = 0;; ++bounce, dimension += dimensions_per_bounce) {
        Hit hit;
        if (!world.tracer.nearest(ray, hit))
            return radiance;
        const bool is_front = dot(hit.geometric_normal, ray.direction) < 0;

        // Emitted light, found by following the ray. Direct light at the vertex before could have found it, too: the
        // two share it by their densities.
        const int first_emitter = world.lights.first_emitter(hit.placement);
        if (first_emitter >= 0 && is_front) {
            const int emitter = first_emitter + static_cast<int>(hit.primitive);
            const float share =
                bounce == 0 ? 1.0f
                            : weight(direction_density, world.lights.density(emitter, vertex, ray.direction, hit));
            radiance += throughput * world.lights.radiance(emitter) * share;
        }

        // The surface reflects on both sides; its frame is on the side that the ray came from.
        const DiffuseReflection &reflection = world.materials[hit.placement].interface.reflection;
        const float side = is_front ? 1.0f : -1.0f;
        const Vec3 facing_normal = hit.geometric_normal * side;
        const Frame frame(hit.shading_normal * side);

        // Direct light, from a sampled point of a sampled light: value * cosine * radiance / density, if nothing is in
        // the way.
        LightSample light;
        const double choice = world.lights.has_choice() ? sampler.single_exact(dimension + light_choice) : 0.0;
        if (world.lights.sample(hit.point, choice, sampler.pair(dimension + light_point), light)) {
            const float cosine = dot(frame.z, light.to_light);
            if (cosine > 0 && dot(facing_normal, light.to_light) > 0) {
                const float share = light.density > 0 ? weight(light.density, reflection.density(cosine)) : 1.0f;
                const Vec3 from = hit.origin_towards(light.to_light);
                const bool is_shadowed = light.is_distant ? world.tracer.is_occluded(from, light.to_light, INFINITY)
                                                          : world.tracer.is_occluded(from, light.end - from, 1);
                if (!is_shadowed)
                    radiance += throughput * reflection.value() * light.contribution * (cosine * share);
            }
        }

        // The next direction. Where the shading normal leans, part of its hemisphere lies below the surface.
        const Vec3 local = reflection.sample(sampler.pair(dimension + reflected_direction));
        direction_density = reflection.density(local.z);
        const Vec3 direction = frame.world_from_local(local);
        if (!(direction_density > 0) || !(dot(facing_normal, direction) > 0))
            return radiance;
        throughput *= reflection.value() * (local.z / direction_density);

        // Russian roulette: the path goes on with that probability, and then counts for those that end (Arvo, Kirk,
        // "Particle Transport and Image Synthesis", 1990).
        const float survives = std::min(largest_component(throughput), 0.95f);
        if (survives <= 0)
            return radiance;
        if (bounce >= first_roulette) {
            if (sampler.single(dimension + survival) >= survives)
                return radiance;
            throughput = throughput * (1 / survives);
        }

        vertex = hit.point;
        ray = {hit.origin_towards(direction), direction};
    }
}

} // namespace vantor
