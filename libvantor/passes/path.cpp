// Path: the light that arrives along rays. Kajiya, "The Rendering Equation", 1986; the estimator follows Veach, "Robust
// Monte Carlo Methods for Light Transport Simulation", 1997, chapters 8 to 10.
#include "libvantor/passes/path.h"

#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// What the numbers of a bounce are for.
enum Dimension : std::uint32_t { light_point, light_choice, next_direction, survival, lobe, dimensions_per_bounce };

// Roulette from this bounce on. Earlier it costs more in noise than it saves in time, later the other way round.
constexpr int first_roulette = 3;

// Multiple importance sampling: the weight of a sample drawn with one density where another could have drawn it too.
// The power heuristic with exponent 2, Veach 9.2.4. The density is above 0; squares of densities may overflow, which a
// ratio survives.
float weight(float density, float other_density) {
    const float ratio = other_density / density;
    return 1 / (1 + ratio * ratio);
}

// Whether a ray is finite: Embree with assertions ends the process at any other. One sum is tested instead of six
// numbers, which is quicker; scenes are far too small for it to overflow.
bool is_traceable(Vec3 from, Vec3 direction) {
    const Vec3 sum = from + direction;
    return std::isfinite(sum.x + sum.y + sum.z);
}

// Light that has been sampled. It arrives if nothing is in its way.
struct DirectLight {
    Path *path;
    Color radiance;
};

// Emitted light, found by following the ray. Direct light at the vertex before could have found it, too, unless the ray
// had no choice: the two share it by their densities.
void add_emitted_light(Path &path, const Hit &hit, const Surface &surface, const World &world) {
    const int first_emitter = world.lights.first_emitter(hit.placement);
    if (first_emitter < 0 || !surface.arrives_at_front())
        return;
    const int emitter = first_emitter + static_cast<int>(hit.primitive);
    float share = 1;
    if (!path.finds_lights)
        share = weight(path.direction_density, world.lights.density(emitter, path.vertex, path.ray.direction, hit));
    path.radiance += path.throughput * world.lights.radiance(emitter) * share;
}

// Direct light, from a sampled point of a sampled light: value * cosine * radiance / density. False if none arrives.
bool sample_direct_light(Path &path, const Hit &hit, const Surface &surface, std::uint32_t dimension,
                         const World &world, DirectLight &result, Segment &way) {
    if (surface.is_specular())
        return false;
    const double choice = world.lights.has_choice() ? path.sampler.single(dimension + light_choice) : 0.0;
    LightSample light;
    if (!world.lights.sample(hit.point, choice, path.sampler.pair(dimension + light_point), light))
        return false;
    const Scattered scattered = surface.evaluate(light.to_light);
    if (is_black(scattered.value))
        return false;

    const float share = light.has_extent ? weight(light.density, scattered.density) : 1.0f;
    result.path = &path;
    result.radiance = path.throughput * scattered.value * light.contribution * share;
    const Vec3 from = hit.origin_towards(light.to_light);
    way = light.is_distant ? Segment{from, light.to_light, INFINITY} : Segment{from, light.end - from, 1};
    return is_traceable(way.from, way.direction);
}

// The next ray; its throughput is value * cosine / density. False if the path ends.
bool sample_next_ray(Path &path, const Hit &hit, const Surface &surface, std::uint32_t dimension, int bounce) {
    ScatteringSample scattering;
    if (!surface.sample(path.sampler.pair(dimension + next_direction), path.sampler.unstratified(dimension + lobe),
                        scattering))
        return false;
    path.throughput *= scattering.weight;

    // Russian roulette: the path goes on with that probability, and then counts for those that end (Arvo, Kirk,
    // "Particle Transport and Image Synthesis", 1990).
    const float survives = std::min(largest_component(path.throughput), 0.95f);
    if (!(survives > 0))
        return false;
    if (bounce >= first_roulette) {
        if (path.sampler.unstratified(dimension + survival) >= survives)
            return false;
        path.throughput = path.throughput * (1 / survives);
    }

    path.vertex = hit.point;
    path.direction_density = scattering.density;
    path.finds_lights = scattering.is_specular;
    path.ray = {hit.origin_towards(scattering.in), scattering.in};
    return is_traceable(path.ray.origin, path.ray.direction);
}

} // namespace

void trace_paths(std::span<Path> paths, const World &world, std::uint32_t first_dimension) {
    std::vector<Path *> growing;
    growing.reserve(paths.size());
    for (Path &path : paths)
        growing.push_back(&path);
    std::vector<Ray> rays(paths.size());
    std::vector<Hit> hits(paths.size());
    std::vector<DirectLight> lights(paths.size());
    std::vector<Segment> ways(paths.size());
    std::vector<char> are_blocked(paths.size());

    std::uint32_t dimension = first_dimension;
    for (int bounce = 0; !growing.empty(); ++bounce, dimension += dimensions_per_bounce) {
        // Where the paths arrive.
        const std::size_t path_count = growing.size();
        for (std::size_t i = 0; i < path_count; ++i)
            rays[i] = growing[i]->ray;
        world.tracer.nearest(std::span(rays).first(path_count), bounce == 0, hits);

        // What they find there, and where they go on.
        std::size_t light_count = 0;
        std::size_t still_growing = 0;
        for (std::size_t i = 0; i < path_count; ++i) {
            if (!hits[i].exists)
                continue;
            Path &path = *growing[i];
            const Surface surface(hits[i], path.ray.direction, world);
            add_emitted_light(path, hits[i], surface, world);
            if (sample_direct_light(path, hits[i], surface, dimension, world, lights[light_count], ways[light_count]))
                ++light_count;
            if (sample_next_ray(path, hits[i], surface, dimension, bounce))
                growing[still_growing++] = &path;
        }
        growing.resize(still_growing);

        // Which of the sampled light arrives.
        world.tracer.blocked(std::span(ways).first(light_count), are_blocked);
        for (std::size_t i = 0; i < light_count; ++i)
            if (!are_blocked[i])
                lights[i].path->radiance += lights[i].radiance;
    }
}

} // namespace vantor
