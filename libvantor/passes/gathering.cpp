// Gathering: what the patches of a scene see, and the light that reaches them straight from lights.
#include "libvantor/passes/gathering.h"

#include "libvantor/passes/path.h"
#include "libvantor/passes/shadow.h"
#include "libvantor/world/surface.h"

namespace vantor {

namespace {

enum Dimension : std::uint32_t { point_on_patch, direction, light_point, light_choice, first_of_path };

// A side's direct light is only seen by others, each of which sees many sides: it needs no more.
constexpr int light_samples = 16;

// The number's even bits: the opposite of what Sampler does with a pixel, so that the sides count in their order.
std::uint32_t even_bits(std::uint32_t x) {
    x &= 0x55555555u;
    x = (x | (x >> 1)) & 0x33333333u;
    x = (x | (x >> 2)) & 0x0f0f0f0fu;
    x = (x | (x >> 4)) & 0x00ff00ffu;
    return (x | (x >> 8)) & 0x0000ffffu;
}

Sampler sampler_of(std::uint32_t side, int sample, int samples) {
    return {even_bits(side), even_bits(side >> 1), static_cast<std::uint32_t>(sample),
            static_cast<std::uint32_t>(samples)};
}

} // namespace

// A ray's start.
struct Gathering::Departure {
    Sampler sampler;
    Hit from;
    Vec3 normal; // of the side
    Ray ray;
    float density; // of the direction, per solid angle
};

Gathering::Departure Gathering::depart(std::uint32_t side, int sample, int samples) const {
    const Sampler sampler = sampler_of(side, sample, samples);
    const Hit from = patches.point_of(side / 2, sampler.pair(point_on_patch));
    const Vec3 normal = from.geometric_normal * (side % 2 == 0 ? 1.0f : -1.0f);
    const Vec3 local = warp::cosine_hemisphere(sampler.pair(direction));
    const Vec3 towards = Frame(normal).world_from_local(local);
    return {sampler, from, normal, {from.origin_towards(normal), towards}, warp::cosine_hemisphere_density(local.z)};
}

// A side lies in the media around one of its points.
MediumStack Gathering::media_around(const Departure &departure) const {
    return world.media.empty() ? MediumStack() : media_at(departure.ray.origin, world.tracer, world.placements);
}

void Gathering::see(std::uint32_t side, int first, int end, Row &row) const {
    std::vector<Departure> departures;
    std::vector<Ray> rays;
    departures.reserve(static_cast<std::size_t>(end - first));
    rays.reserve(static_cast<std::size_t>(end - first));
    for (int i = first; i < end; ++i) {
        departures.push_back(depart(side, i, ray_count));
        rays.push_back(departures.back().ray);
    }
    std::vector<Hit> hits(rays.size());
    world.tracer.nearest(rays, false, hits);

    const MediumStack media = media_around(departures.front());
    const bool is_clear = media.innermost() == MediumStack::none;
    std::vector<Path> paths;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        if (is_clear) {
            if (!hits[i].exists)
                continue;
            const std::uint32_t patch = patches.patch_at(hits[i]);
            if (patch != Patches::none) {
                row.seen.push_back(side_of_patch(patch, dot(hits[i].geometric_normal, rays[i].direction) < 0));
                continue;
            }
        }
        // What has no patches is left to the path tracer. The lights that the ray itself would find have been sampled:
        // a density of 0 leaves nothing to it.
        Path path{rays[i], departures[i].sampler, media};
        path.vertex = departures[i].from.point;
        path.direction_density = 0;
        path.scatterings = 1;
        path.finds_lights = false;
        paths.push_back(path);
    }
    row.rays += static_cast<int>(rays.size());
    if (paths.empty())
        return;
    trace_paths(paths, world, first_of_path);
    for (const Path &path : paths)
        if (is_finite(path.radiance))
            row.followed += path.radiance * pi;
}

SideLight Gathering::light_of(std::uint32_t side) const {
    SideLight result;
    std::vector<Color> gains;
    LightWays ways;
    std::vector<Path> paths;
    MediumStack media;
    for (int i = 0; i < light_samples; ++i) {
        const Departure departure = depart(side, i, light_samples);
        if (i == 0)
            media = media_around(departure);
        result.reflectance += Surface(departure.from, -departure.normal, world).albedo();

        const double choice = world.lights.has_choice() ? departure.sampler.single(light_choice) : 0.0;
        LightSample light;
        if (world.lights.sample(departure.from.point, choice, departure.sampler.pair(light_point), light)) {
            const float cosine = dot(departure.normal, light.to_light);
            if (cosine > 0 && ways.add(departure.ray.origin, media, light)) {
                const float share =
                    light.has_extent ? shared_weight(light.density, warp::cosine_hemisphere_density(cosine)) : 1.0f;
                gains.push_back(light.contribution * (cosine * share));
            }
        }

        Path path{departure.ray, departure.sampler, media};
        path.vertex = departure.from.point;
        path.direction_density = departure.density;
        path.finds_lights = false;
        path.finds_only_lights = true;
        paths.push_back(path);
    }
    std::vector<Color> arriving;
    transmit(ways, world, arriving);
    for (std::size_t i = 0; i < gains.size(); ++i)
        result.direct += gains[i] * arriving[i];
    trace_paths(paths, world, first_of_path);
    for (const Path &path : paths)
        if (is_finite(path.radiance))
            result.direct += path.radiance * pi;

    result.reflectance = result.reflectance * (1.0f / light_samples);
    result.direct = result.direct * (1.0f / light_samples);
    if (!is_finite(result.direct))
        result.direct = {};
    return result;
}

} // namespace vantor
