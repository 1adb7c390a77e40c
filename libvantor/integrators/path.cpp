// Path: the light that arrives along rays. Kajiya, "The Rendering Equation", 1986; the estimator follows Veach, "Robust
// Monte Carlo Methods for Light Transport Simulation", 1997, chapters 8 to 10.
#include "libvantor/integrators/path.h"

#include "libvantor/integrators/shadow_rays.h"
#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// What the numbers of a step are for.
enum Dimension : std::uint32_t {
    light_point,
    light_choice,
    next_direction,
    survival,
    lobe,
    passage,
    free_path,
    lit_distance,
    dimensions_per_step
};

// Roulette from this bounce on. Earlier it costs more in noise than it saves in time, later the other way round.
constexpr int roulette_depth = 3;

// Where a path is told its indirect light, its direct light is sampled as ever; but only one in so many of its last
// rays is traced. These make up for what samples of large lights nearby miss, which the two weigh by their expected
// numbers (Veach 9.2.2).
constexpr float last_rays = 0.25f;

// What paths are traced in, and how.
struct PathScene {
    const World &world;
    const Settings &settings;
};

// Light that has been sampled for paths, and the ways that it has to come.
struct SampledLight {
    struct Gain {
        Path *path;
        Color radiance; // if all of it arrives
    };
    std::vector<Gain> gains;
    ShadowRays ways;

    void clear() {
        gains.clear();
        ways.clear();
    }
};

// Indirect light of one sample, within the limit that keeps rare bright paths from leaving dots. Scaling keeps its
// colour.
Color limited(Color radiance, bool is_indirect, const PathScene &scene) {
    const float limit = scene.settings.clamp;
    const float largest = largest_component(radiance);
    return limit > 0 && is_indirect && largest > limit ? radiance * (limit / largest) : radiance;
}

bool may_scatter(const Path &path, const PathScene &scene) { return path.bounces < scene.settings.max_bounces; }

// Emitted light, found by following the ray. Direct light at the vertex before could have found it, too, unless the ray
// had no choice: the two share it by their pdfs.
void add_emitted_light(Path &path, const Hit &hit, const Surface &surface, const PathScene &scene) {
    const int emitter = scene.world.lights.emitter_at(hit);
    if (emitter < 0 || !surface.arrives_at_front())
        return;
    float share = 1;
    if (!path.finds_lights)
        share =
            power_heuristic(path.direction_pdf, scene.world.lights.pdf(emitter, path.vertex, path.ray.direction, hit));
    path.radiance += limited(path.throughput * scene.world.lights.radiance(emitter) * share, path.bounces > 1, scene);
}

// Light from infinity, found by a ray that misses everything; shared as above.
void add_infinite_lights(Path &path, const PathScene &scene) {
    scene.world.lights.for_each_infinite(path.ray.direction, [&](Color radiance, float pdf) {
        const float share = path.finds_lights ? 1.0f : power_heuristic(path.direction_pdf, pdf);
        path.radiance += limited(path.throughput * radiance * share, path.bounces > 1, scene);
    });
}

// The numbers of one step of a path: the two pairs that nearly every step needs, and the way to the others.
struct Numbers {
    const Sampler &sampler;
    std::uint32_t dimension;
    Point2f light_point;
    Point2f next_direction;
};

double light_choice_of(const Numbers &numbers, const PathScene &scene) {
    return scene.world.lights.has_choice() ? numbers.sampler.get_1d(numbers.dimension + light_choice) : 0.0;
}

// A sampled point of a sampled light, as seen from a point of the path; false if none can arrive.
bool sample_light(const Numbers &numbers, Vec3 reference, const PathScene &scene, LightSample &light) {
    return scene.world.lights.sample(reference, light_choice_of(numbers, scene), numbers.light_point, light);
}

// Notes what a sampled light brings if it arrives at `from`: value * cosine * radiance / pdf.
void add_direct_light(Path &path, Vec3 from, const MediumStack &media, const LightSample &light,
                      const BsdfValue &scattered, const PathScene &scene, SampledLight &direct) {
    if (is_black(scattered.value) || !direct.ways.add(from, media, light))
        return;
    const float share = light.has_extent ? power_heuristic(light.pdf, scattered.pdf) : 1.0f;
    const Color radiance = path.throughput * scattered.value * light.contribution * share;
    direct.gains.push_back({&path, limited(radiance, path.bounces > 0, scene)});
}

// Russian roulette: the path goes on with that probability, and then counts for those that end (Arvo, Kirk, "Particle
// Transport and Image Synthesis", 1990).
bool survives_roulette(Path &path, const Numbers &numbers) {
    const float survives = std::min(largest_component(path.throughput), 0.95f);
    if (!(survives > 0))
        return false;
    if (path.bounces++ >= roulette_depth) {
        if (numbers.sampler.unstratified(numbers.dimension + survival) >= survives)
            return false;
        path.throughput = path.throughput * (1 / survives);
    }
    return true;
}

bool leave(Path &path, Vec3 origin, Vec3 direction) {
    path.ray = {origin, direction};
    return is_traceable(origin, direction);
}

void record_aovs(Path &path, const Hit &hit, const Surface &surface, const Placement &placement) {
    const Vec3 normal = surface.arrives_at_front() ? surface.shading_normal() : -surface.shading_normal();
    // Surfaces passed straight through lie on the same line.
    const float depth = length(hit.point - path.aovs->start);
    *path.aovs = {path.aovs->start, true, surface.albedo(), normal, hit.point, depth, placement.object->id};
}

// Whether a path at a surface is told its indirect light, and what that is.
bool finds_cached_irradiance(Path &path, const Hit &hit, const Surface &surface, const IrradianceLookup &indirect,
                             Color &irradiance) {
    return indirect.cache && surface.is_diffuse() && path.diffuse_surfaces++ >= indirect.surfaces_before &&
           indirect.cache->irradiance(hit, surface.arrives_at_front(), irradiance);
}

// A path at a surface, and at a point of a medium: looks for light there, and tells whether the path goes on.

bool meet_surface(Path &path, const Hit &hit, const Numbers &numbers, const PathScene &scene,
                  const IrradianceLookup &indirect, SampledLight &direct) {
    const Placement &placement = scene.world.placements[hit.placement];
    const Surface surface(hit, path.ray.direction, scene.world);
    add_emitted_light(path, hit, surface, scene);

    const float opacity = surface.opacity();
    if (opacity < 1 && numbers.sampler.unstratified(numbers.dimension + passage) >= opacity) {
        cross_surface(path.media, placement, hit, path.ray.direction);
        return leave(path, hit.origin_towards(path.ray.direction), path.ray.direction);
    }
    if (path.finds_only_lights)
        return false;

    if (path.aovs && path.bounces == 0)
        record_aovs(path, hit, surface, placement);
    if (!may_scatter(path, scene))
        return false;

    Color irradiance;
    path.finds_only_lights = finds_cached_irradiance(path, hit, surface, indirect, irradiance);
    const float rays = path.finds_only_lights ? last_rays : 1.0f;
    if (path.finds_only_lights)
        path.radiance += limited(path.throughput * surface.albedo() * irradiance * inverse_pi, true, scene);

    const SurfaceBsdf bsdf = surface.bsdf();
    LightSample light;
    if (!surface.is_specular() && sample_light(numbers, hit.point, scene, light)) {
        MediumStack media = path.media;
        if (surface.is_crossed(light.to_light))
            cross_surface(media, placement, hit, light.to_light);
        BsdfValue scattered = bsdf.evaluate(light.to_light);
        scattered.pdf *= rays;
        add_direct_light(path, hit.origin_towards(light.to_light), media, light, scattered, scene, direct);
    }

    BsdfSample next;
    if (!bsdf.sample(numbers.next_direction, numbers.sampler.unstratified(numbers.dimension + lobe), next))
        return false;
    if (path.finds_only_lights) {
        if (numbers.sampler.unstratified(numbers.dimension + survival) >= rays)
            return false;
        ++path.bounces;
        path.throughput *= next.weight * (1 / rays);
        next.pdf *= rays;
    } else {
        path.throughput *= next.weight;
        if (!survives_roulette(path, numbers))
            return false;
    }
    if (surface.is_crossed(next.wi))
        cross_surface(path.media, placement, hit, next.wi);
    path.vertex = hit.point;
    path.direction_pdf = next.pdf;
    path.finds_lights = next.is_specular;
    return leave(path, hit.origin_towards(next.wi), next.wi);
}

// Light of the chosen light that is scattered once at a point of the ray.
void add_scattered_light(Path &path, const Medium &medium, Vec3 point, const Numbers &numbers, const PathScene &scene,
                         SampledLight &direct) {
    LightSample light;
    if (!sample_light(numbers, point, scene, light))
        return;
    const float phase = medium.phase.evaluate(dot(path.ray.direction, light.to_light));
    add_direct_light(path, point, path.media, light, {{phase, phase, phase}, phase}, scene, direct);
}

// The chosen light, if it shines from a single point, lights the whole ray; most of that comes from next to the light,
// where few flights end. So the point that is lit is chosen apart from the flight, by equal angles as the light sees
// them: Kulla, Fajardo, "Importance Sampling Techniques for Path Tracing in Participating Media", 2012.
void light_the_ray(Path &path, const Medium &medium, Vec3 light, float length, const Numbers &numbers,
                   const PathScene &scene, SampledLight &direct) {
    if (is_black(medium.sigma_s))
        return;
    const float nearest = dot(light - path.ray.origin, path.ray.direction);
    const Vec3 across = path.ray.origin + path.ray.direction * nearest - light;
    // Whatever the height, the pdf fits the choice; a ray that goes through the light is one next to it.
    const float height = std::max(vantor::length(across), clearance_of(light, std::fabs(nearest)));
    const float first = std::atan2(-nearest, height);
    const float last = std::atan2(length - nearest, height);
    const float number = numbers.sampler.get_2d(numbers.dimension + lit_distance).u;
    const float beyond = height * std::tan(first + (last - first) * number);
    const float distance = nearest + beyond;
    if (!(distance > 0 && distance < length))
        return;
    const float inverse_pdf = (last - first) * (height * height + beyond * beyond) / height;
    const Color before = path.throughput;
    path.throughput *= medium.sigma_s * medium.transmittance(distance) * inverse_pdf;
    add_scattered_light(path, medium, path.ray.origin + path.ray.direction * distance, numbers, scene, direct);
    path.throughput = before;
}

bool scatter_in_medium(Path &path, const Medium &medium, Vec3 point, bool is_ray_lit, const Numbers &numbers,
                       const PathScene &scene, SampledLight &direct) {
    if (!may_scatter(path, scene))
        return false;
    const Vec3 before = path.ray.direction;
    if (!is_ray_lit)
        add_scattered_light(path, medium, point, numbers, scene, direct);

    const Vec3 direction = medium.phase.sample(before, numbers.next_direction);
    if (!survives_roulette(path, numbers))
        return false;
    path.vertex = point;
    path.direction_pdf = medium.phase.evaluate(dot(before, direction));
    path.finds_lights = false;
    return leave(path, point, direction);
}

// One step of a path, whose ray hits something or nothing.
bool advance(Path &path, const Hit &hit, const Numbers &numbers, const PathScene &scene,
             const IrradianceLookup &indirect, SampledLight &direct) {
    if (path.media.innermost() != MediumStack::none) {
        const Medium &medium = scene.world.media_of(path.media);
        const float length = hit.exists ? hit.distance : INFINITY;
        const Vec3 *light = scene.world.lights.position_of(light_choice_of(numbers, scene));
        if (light && !path.finds_only_lights && may_scatter(path, scene))
            light_the_ray(path, medium, *light, length, numbers, scene, direct);
        const Medium::DistanceSample flight =
            medium.sample_distance(length, numbers.sampler.get_2d(numbers.dimension + free_path));
        path.throughput *= flight.weight;
        if (flight.is_scattered)
            return !path.finds_only_lights &&
                   scatter_in_medium(path, medium, path.ray.origin + path.ray.direction * flight.distance, light,
                                     numbers, scene, direct);
    }
    if (hit.exists)
        return meet_surface(path, hit, numbers, scene, indirect, direct);
    add_infinite_lights(path, scene);
    return false;
}

} // namespace

void trace_paths(std::span<Path> paths, const World &world, const Settings &settings, std::uint32_t first_dimension,
                 const IrradianceLookup &indirect) {
    // Surfaces that are passed straight through are no bounces, but steps; more than this are one too many.
    constexpr int most_steps = 10000;

    const PathScene scene{world, settings};
    std::vector<Path *> growing;
    growing.reserve(paths.size());
    for (Path &path : paths)
        if (is_traceable(path.ray.origin, path.ray.direction))
            growing.push_back(&path);
    std::vector<Ray> rays(paths.size());
    std::vector<Hit> hits(paths.size());
    std::vector<Sampler> samplers(paths.size());
    std::vector<Point2f> light_points(paths.size());
    std::vector<Point2f> next_directions(paths.size());
    SampledLight direct;
    std::vector<Color> arriving;

    std::uint32_t dimension = first_dimension;
    for (int step = 0; !growing.empty() && step < most_steps; ++step, dimension += dimensions_per_step) {
        // Where the paths arrive.
        const std::size_t path_count = growing.size();
        for (std::size_t i = 0; i < path_count; ++i)
            rays[i] = growing[i]->ray;
        for (std::size_t i = 0; i < path_count; ++i)
            samplers[i] = growing[i]->sampler;
        world.tracer.intersect(std::span(rays).first(path_count), step == 0, hits);

        // What they find there, and where they go on.
        const std::span<const Sampler> growing_samplers = std::span(samplers).first(path_count);
        get_2d_of(growing_samplers, dimension + light_point, light_points);
        get_2d_of(growing_samplers, dimension + next_direction, next_directions);
        direct.clear();
        std::size_t still_growing = 0;
        for (std::size_t i = 0; i < path_count; ++i)
            if (advance(*growing[i], hits[i], {samplers[i], dimension, light_points[i], next_directions[i]}, scene,
                        indirect, direct))
                growing[still_growing++] = growing[i];
        growing.resize(still_growing);

        // How much of the sampled light arrives.
        transmit(direct.ways, world, arriving);
        for (std::size_t i = 0; i < direct.gains.size(); ++i)
            direct.gains[i].path->radiance += direct.gains[i].radiance * arriving[i];
    }
}

} // namespace vantor
