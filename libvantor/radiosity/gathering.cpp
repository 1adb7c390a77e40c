// Gathering: what the patches of a scene see, and the light that reaches them straight from lights.
#include "libvantor/radiosity/gathering.h"

#include "libvantor/integrators/direct_light.h"
#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// A side's direct light is only seen by others, each of which sees many sides: it needs no more.
constexpr int light_samples = 16;

// The pixel whose Morton code is the side's number: sides that follow each other take consecutive stretches of the
// sequence, as neighbouring pixels do.
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
    float pdf; // of the direction, per solid angle
};

std::vector<Gathering::Departure> Gathering::departures(std::uint32_t side, int first, int end, int samples) const {
    std::vector<Sampler> samplers;
    for (int sample = first; sample < end; ++sample)
        samplers.push_back(sampler_of(side, sample, samples));
    std::vector<Point2f> points(samplers.size());
    get_2d_of(samplers, point_on_patch, points);
    std::vector<Point2f> directions(samplers.size());
    get_2d_of(samplers, direction, directions);

    std::vector<Departure> all;
    all.reserve(samplers.size());
    for (std::size_t i = 0; i < samplers.size(); ++i) {
        const Hit from = patches.point_of(side / 2, points[i]);
        const Vec3 normal = from.geometric_normal * (side % 2 == 0 ? 1.0f : -1.0f);
        const Vec3 local = warp::cosine_hemisphere(directions[i]);
        const Ray ray{from.origin_towards(normal), Frame(normal).world_from_local(local)};
        all.push_back({samplers[i], from, normal, ray, warp::cosine_hemisphere_pdf(local.z)});
    }
    return all;
}

// A side lies in the media around one of its points.
MediumStack Gathering::media_around(const Departure &departure) const {
    return !world.has_media ? MediumStack() : media_at(departure.ray.origin, world.tracer, world.placements);
}

void Gathering::see(std::uint32_t side, int first, int end, Row &row) const {
    const std::vector<Departure> starts = departures(side, first, end, ray_count);
    std::vector<Ray> rays;
    rays.reserve(starts.size());
    for (const Departure &start : starts)
        rays.push_back(start.ray);
    std::vector<Hit> hits(rays.size());
    world.tracer.intersect(rays, false, hits);

    const MediumStack media = media_around(starts.front());
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
        // a pdf of 0 leaves nothing to it.
        Path path{rays[i], starts[i].sampler, media};
        path.vertex = {starts[i].from.point, starts[i].normal};
        path.direction_pdf = 0;
        path.bounces = 1;
        path.finds_lights = false;
        paths.push_back(path);
    }
    row.rays += static_cast<int>(rays.size());
    if (paths.empty())
        return;
    if (!integrator.trace(paths))
        throw Interrupted();
    for (const Path &path : paths)
        if (is_finite(path.radiance))
            row.followed += path.radiance * pi;
}

SideLight Gathering::light_of(std::uint32_t side) const {
    SideLight result;
    DirectLight direct_light(world);
    std::vector<Path> paths;
    const std::vector<Departure> starts = departures(side, 0, light_samples, light_samples);
    const MediumStack media = media_around(starts.front());
    for (const Departure &departure : starts) {
        result.reflectance += Surface(departure.from, -departure.normal, world).albedo();

        const double choice = direct_light.choice(departure.sampler, light_choice);
        LightSample light;
        if (direct_light.sample({departure.from.point, departure.normal}, choice, departure.sampler.get_2d(light_point),
                                light)) {
            const float cosine = dot(departure.normal, light.to_light);
            const float mis_weight = DirectLight::mis_weight(light, warp::cosine_hemisphere_pdf(cosine));
            if (cosine > 0)
                direct_light.add(side, {departure.ray.origin}, media, light,
                                 light.contribution * (cosine * mis_weight));
        }

        Path path{departure.ray, departure.sampler, media};
        path.vertex = {departure.from.point, departure.normal};
        path.direction_pdf = departure.pdf;
        path.finds_lights = false;
        path.finds_only_lights = true;
        path.bounces = 1; // it comes from a patch, not from the camera
        paths.push_back(path);
    }
    direct_light.trace_shadow_rays([&](std::uint32_t, Color irradiance) { result.direct += irradiance; });
    if (!integrator.trace(paths))
        throw Interrupted();
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
