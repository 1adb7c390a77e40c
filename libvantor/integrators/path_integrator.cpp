// Path integrator: the light that arrives along rays, by random paths.
#include "libvantor/integrators/path_integrator.h"

#include "libvantor/integrators/wave.h"

namespace vantor {

namespace {

using Kind = Vertex::Kind;

// Russian roulette from this bounce on. Earlier it costs more in noise than it saves in time, later the other way
// round.
constexpr int roulette_depth = 3;

// Where a path finds cached irradiance, its direct light is sampled as elsewhere, but only this fraction of the last
// rays is traced. They make up for what samples of large lights nearby miss; the two are weighed by their expected
// numbers (Veach 9.2.2).
constexpr float last_ray_fraction = 0.25f;

// Lets a BSDF be made where it is kept: copies of it would cost as much as its making.
struct InPlace {
    const Surface &surface;
    Vec3 arriving;
    operator SurfaceBsdf() const { return surface.bsdf(arriving); }
};

// Where a ray starts that leaves the surface towards the direction, where surfaces may be crossed.
RayStart start_towards(const Vertex &vertex, Vec3 direction) {
    const Path &path = *vertex.path;
    return start_from(*vertex.hit, path.ray.direction, vertex.start->crossed, direction);
}

} // namespace

bool PathIntegrator::trace(std::span<Path> paths) const {
    // A surface that is passed straight through is a step, but no bounce. Paths of more steps than this end there.
    constexpr int most_steps = 100000;

    Wave wave(paths, world, first_dimension);
    for (int step = 0; step < most_steps && !wave.is_over(); ++step) {
        wave.advance(step == 0, [&](std::span<Vertex> vertices) {
            scatter_in_media(wave, vertices);
            add_emission(vertices);
            pass_through(wave, vertices);
            record_first_hits(wave, vertices);
            record_guides(wave, vertices);
            end_at_limits(vertices);
            const std::span<Vertex *const> scattering = wave.put_in_lanes(vertices);
            look_irradiance_up(scattering);
            prepare_bsdfs(wave, scattering);
            sample_direct_light(wave, scattering);
            scatter(wave, scattering);
            play_roulette(wave, scattering);
        });
        trace_shadow_rays(wave, paths);
        // As often as waves of common paths end, which callers watch between.
        if (step % 256 == 255 && interrupt.requested())
            return false;
    }
    return true;
}

// Indirect light of one sample, within the limit that keeps rare bright paths from leaving dots. Scaling keeps its
// colour.
Color PathIntegrator::clamped(Color radiance, bool is_indirect) const {
    const float limit = settings.clamp;
    const float largest = largest_component(radiance);
    return limit > 0 && is_indirect && largest > limit ? radiance * (limit / largest) : radiance;
}

// Emitted light that the ray has found. Where direct light at the vertex before could have found it too, the two are
// weighed by their pdfs.
void PathIntegrator::add_emission(std::span<Vertex> vertices) const {
    for (Vertex &vertex : vertices) {
        Path &path = *vertex.path;
        if (vertex.kind == Kind::Surface) {
            const Hit &hit = *vertex.hit;
            const Surface &surface = vertex.surface.emplace(hit, path.ray.direction, world);
            const int emitter = world.lights.emitter_at(hit);
            if (emitter < 0 || !surface.arrives_at_front())
                continue;
            float mis_weight = 1;
            if (!path.finds_lights)
                mis_weight = power_heuristic(path.direction_pdf,
                                             world.lights.pdf(emitter, path.vertex, path.ray.direction, hit));
            path.radiance +=
                clamped(path.throughput * world.lights.radiance(emitter, hit) * mis_weight, path.bounces > 1);
        } else if (vertex.kind == Kind::Escaped) {
            const auto add = [&](std::uint32_t light, const SeenLight &seen) {
                float mis_weight = 1;
                if (!path.finds_lights)
                    mis_weight = power_heuristic(path.direction_pdf, world.lights.pmf(path.vertex, light) * seen.pdf);
                path.radiance += clamped(path.throughput * seen.radiance * mis_weight, path.bounces > 1);
            };
            world.lights.for_each_infinite(path.ray.direction, path.is_from_camera(), add);
        }
    }
}

// Through a surface that is not quite opaque, paths go straight on by chance.
void PathIntegrator::pass_through(const Wave &wave, std::span<Vertex> vertices) const {
    if (world.is_opaque)
        return;
    for (Vertex &vertex : vertices) {
        if (vertex.kind != Kind::Surface)
            continue;
        const float opacity = vertex.surface->opacity();
        if (opacity >= 1 || wave.sample_unstratified(vertex, Wave::passage) < opacity)
            continue;
        Path &path = *vertex.path;
        const Vec3 direction = path.ray.direction;
        cross_surface(path.media, placement_at(*vertex.hit), *vertex.hit, direction);
        vertex.kind = vertex.leave(start_towards(vertex, direction), direction) ? Kind::Passed : Kind::Ended;
    }
}

void PathIntegrator::record_first_hits(const Wave &wave, std::span<const Vertex> vertices) const {
    if (!wave.has_aovs())
        return;
    for (const Vertex &vertex : vertices)
        if (vertex.kind == Kind::Surface && vertex.path->aovs && vertex.path->bounces == 0)
            vertex.path->aovs->record(*vertex.hit, *vertex.surface, placement_at(*vertex.hit));
}

// Through smooth glass and mirrors to what is seen there; no further than roulette, whose weights are noise.
void PathIntegrator::record_guides(const Wave &wave, std::span<const Vertex> vertices) {
    if (!wave.has_guides())
        return;
    for (const Vertex &vertex : vertices) {
        const Path &path = *vertex.path;
        if (!path.guides || path.guides->is_found || vertex.kind == Kind::Passed)
            continue;
        GuideSample &guides = *path.guides;
        guides.albedo = path.throughput;
        if (guides.is_certain)
            guides.emission = path.radiance;
        guides.is_found = true;
        if (vertex.kind != Kind::Surface)
            continue;
        const Surface &surface = *vertex.surface;
        guides.depth += length(vertex.hit->point - guides.from);
        guides.from = vertex.hit->point;
        guides.normal = surface.arrives_at_front() ? surface.shading_normal() : -surface.shading_normal();
        guides.is_found = !surface.is_specular() || path.bounces >= roulette_depth;
        guides.is_certain = guides.is_certain && !surface.transmits();
        if (guides.is_found && !surface.is_specular())
            guides.albedo *= surface.albedo();
    }
}

void PathIntegrator::end_at_limits(std::span<Vertex> vertices) const {
    for (Vertex &vertex : vertices) {
        const bool is_at_limit = vertex.path->finds_only_lights | is_at_last_bounce(*vertex.path);
        const bool ends = vertex.is_scattering() & is_at_limit;
        vertex.kind = ends ? Kind::Ended : vertex.kind;
    }
}

// Indirect light that is known beforehand. All that is left to the path is direct light.
void PathIntegrator::look_irradiance_up(std::span<Vertex *const> in_lanes) const {
    if (!indirect.cache)
        return;
    for (const Vertex *of_lane : in_lanes) {
        const Vertex &vertex = *of_lane;
        Path &path = *vertex.path;
        if (vertex.kind != Kind::Surface || !vertex.surface->is_diffuse() ||
            path.diffuse_surfaces++ < indirect.surfaces_before)
            continue;
        Color irradiance;
        if (!indirect.cache->irradiance(*vertex.hit, vertex.surface->arrives_at_front(), irradiance))
            continue;
        path.finds_only_lights = true;
        path.radiance += clamped(path.throughput * vertex.surface->albedo() * irradiance * inverse_pi, true);
    }
}

void PathIntegrator::prepare_bsdfs(Wave &wave, std::span<Vertex *const> in_lanes) const {
    wave.diffuse.are_set = {};
    for (std::size_t i = 0; i < in_lanes.size(); ++i) {
        Vertex &vertex = *in_lanes[i];
        if (vertex.kind != Kind::Surface)
            continue;
        if (vertex.surface->is_diffuse())
            wave.diffuse.set(i, *vertex.hit, *vertex.surface);
        else
            vertex.bsdf.emplace(InPlace{*vertex.surface, vertex.path->ray.direction});
    }
}

// What sampled lights bring: throughput * value * cosine * radiance / pdf. Lights are sampled side by side, and so
// diffuse surfaces reflect them.
void PathIntegrator::sample_direct_light(Wave &wave, std::span<Vertex *const> in_lanes) const {
    wave.lights.clear();
    for (std::size_t i = 0; i < in_lanes.size(); ++i) {
        const Vertex &vertex = *in_lanes[i];
        if (wave.diffuse.are_set[i]) {
            world.lights.choose(vertex.path->light_context(wave.diffuse.light_context(i)),
                                wave.sample_light_choice(vertex), i, wave.lights);
            wave.carried.throughput.set(i, vertex.path->throughput);
            wave.carried.ray_fraction[i] = vertex.path->finds_only_lights ? last_ray_fraction : 1.0f;
        } else if (vertex.kind == Kind::Surface && !vertex.surface->is_specular()) {
            world.lights.choose(vertex.path->light_context(vertex.surface->light_context(*vertex.hit)),
                                wave.sample_light_choice(vertex), i, wave.lights);
        }
    }
    world.lights.sample(wave.light_points, wave.lights);
    const LightSampleLanes &lights = wave.lights.samples;
    ReflectedLanes reflected;
    reflect(wave.diffuse, wave.carried, lights, reflected);
    const bool has_crossings = world.tracer.has_crossings();
    for (std::size_t i = 0; i < in_lanes.size(); ++i) {
        const Vertex &vertex = *in_lanes[i];
        if (vertex.kind == Kind::Medium) {
            light_medium(wave, vertex);
        } else if (reflected.are_lit[i]) {
            const Color radiance = clamped(reflected.radiance[i], vertex.path->bounces > 0);
            if (has_crossings)
                add_crossing_light(wave, vertex, lights.at(i, wave.lights.choices[i]), radiance);
            else
                wave.direct_light.add(
                    wave.index_of(*vertex.path),
                    {reflected.start[i], reflected.direction[i], lights.is_infinite[i] ? INFINITY : 1.0f}, radiance);
        } else if (lights.may_arrive[i] && !wave.diffuse.are_set[i]) {
            light_surface(wave, vertex, lights.at(i, wave.lights.choices[i]));
        }
    }
}

void PathIntegrator::light_surface(Wave &wave, const Vertex &vertex, const LightSample &light) const {
    const Path &path = *vertex.path;
    const BsdfValue scattered = vertex.bsdf->evaluate(light.to_light);
    if (is_black(scattered.value))
        return;
    const float ray_pdf = path.finds_only_lights ? scattered.pdf * last_ray_fraction : scattered.pdf;
    const Color weighed =
        path.throughput * scattered.value * light.contribution * DirectLight::mis_weight(light, ray_pdf);
    const Color radiance = clamped(weighed, path.bounces > 0);
    if (world.tracer.has_crossings())
        add_crossing_light(wave, vertex, light, radiance);
    else
        wave.direct_light.add(wave.index_of(path), vertex.hit->origin_towards(light.to_light), light, radiance);
}

// Notes a shadow ray where surfaces may be crossed, and maybe this one is.
void PathIntegrator::add_crossing_light(Wave &wave, const Vertex &vertex, const LightSample &light,
                                        Color radiance) const {
    MediumStack media = vertex.path->media;
    if (vertex.surface->is_crossed(light.to_light))
        cross_surface(media, placement_at(*vertex.hit), *vertex.hit, light.to_light);
    wave.direct_light.add(wave.index_of(*vertex.path), start_towards(vertex, light.to_light), media, light, radiance);
}

void PathIntegrator::scatter(const Wave &wave, std::span<Vertex *const> in_lanes) const {
    ScatteredLanes scattered;
    vantor::scatter(wave.diffuse, wave.next_directions, scattered);
    const auto scatter_one = [&](const Vertex &vertex) {
        const std::size_t lane = vertex.lane;
        if (vertex.kind == Kind::Medium)
            return scatter_at_point(wave, vertex);
        if (!wave.diffuse.are_set[lane])
            return scatter_at_surface(wave, vertex);
        if (!scattered.are_set[lane])
            return false;
        Path &path = *vertex.path;
        path.throughput *= wave.diffuse.reflectance[lane];
        path.vertex = path.light_context(wave.diffuse.light_context(lane));
        path.direction_pdf = scattered.pdf[lane];
        path.finds_lights = false;
        return leave_surface(vertex, scattered.start[lane], scattered.direction[lane]);
    };
    for (Vertex *vertex : in_lanes)
        if (!scatter_one(*vertex))
            vertex->kind = Kind::Ended;
}

// False if nothing is scattered, or nowhere that a ray can be followed; here and below.
bool PathIntegrator::scatter_at_surface(const Wave &wave, const Vertex &vertex) const {
    Path &path = *vertex.path;
    BsdfSample next;
    if (!vertex.bsdf->sample(wave.next_directions[vertex.lane], wave.sample_unstratified(vertex, Wave::lobe), next))
        return false;
    path.throughput *= next.weight;
    path.vertex = path.light_context(vertex.surface->light_context(*vertex.hit));
    path.direction_pdf = next.pdf;
    path.finds_lights = next.is_specular;
    return leave_surface(vertex, vertex.hit->origin_towards(next.wi), next.wi);
}

bool PathIntegrator::leave_surface(const Vertex &vertex, Vec3 beside, Vec3 direction) const {
    Path &path = *vertex.path;
    if (!world.tracer.has_crossings())
        return path.leave(beside, direction);
    const Hit &hit = *vertex.hit;
    if (vertex.surface->is_crossed(direction))
        cross_surface(path.media, placement_at(hit), hit, direction);
    return vertex.leave(start_towards(vertex, direction), direction);
}

// Russian roulette: the path goes on with that probability, and then counts for those that end (Arvo, Kirk, "Particle
// Transport and Image Synthesis", 1990). In a medium that only scatters paths lose nothing, and are long; what ends
// them is that they leave it. Were they cut by chance, few would count for all: in a dense one, ever fewer for ever
// more.
void PathIntegrator::play_roulette(const Wave &wave, std::span<Vertex *const> in_lanes) const {
    for (Vertex *of_lane : in_lanes) {
        Vertex &vertex = *of_lane;
        if (!vertex.is_scattering())
            continue;
        Path &path = *vertex.path;
        const bool is_last = path.finds_only_lights;
        const float most = vertex.kind == Kind::Medium ? 1.0f : 0.95f;
        const float survives = is_last ? last_ray_fraction : std::min(largest_component(path.throughput), most);
        const bool is_played = is_last || path.bounces >= roulette_depth;
        ++path.bounces;
        if (!(survives > 0) || (is_played && wave.sample_unstratified(vertex, Wave::survival) >= survives)) {
            vertex.kind = Kind::Ended;
        } else if (is_played) {
            path.throughput = path.throughput * (1 / survives);
            // Of the last rays, fewer are expected; of all others, the light samples know nothing of the roulette.
            if (is_last)
                path.direction_pdf *= survives;
        }
    }
}

void PathIntegrator::trace_shadow_rays(Wave &wave, std::span<Path> paths) {
    wave.direct_light.trace_shadow_rays(
        [&](std::uint32_t receiver, Color radiance) { paths[receiver].radiance += radiance; });
}

} // namespace vantor
