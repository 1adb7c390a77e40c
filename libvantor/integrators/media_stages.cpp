// Media stages: where rays go through media, they are scattered there, and lit on their way.
#include "libvantor/integrators/equiangular.h"
#include "libvantor/integrators/path_integrator.h"
#include "libvantor/integrators/wave.h"

namespace vantor {

namespace {

// The part of the path's ray that lies in its medium.
LightSampleRay ray_in_medium(const Vertex &vertex) {
    const Path &path = *vertex.path;
    const Vec3 from = path.ray.origin + path.ray.direction * vertex.start->lead;
    const float length =
        vertex.hit->exists ? std::max(0.0f, dot(vertex.hit->point - from, path.ray.direction)) : INFINITY;
    return {{from, path.ray.direction}, length};
}

} // namespace

// Where the ray goes through a medium, it may be scattered there before it reaches a surface.
void PathIntegrator::scatter_in_media(Wave &wave, std::span<Vertex> vertices) const {
    if (!world.has_media)
        return;
    for (Vertex &vertex : vertices) {
        Path &path = *vertex.path;
        if (path.media.innermost() == MediumStack::none)
            continue;
        const Medium &medium = world.media_of(path.media);
        const auto [ray, length] = ray_in_medium(vertex);
        vertex.is_ray_lit = world.lights.has_positional() && !path.finds_only_lights && !is_at_last_bounce(path);
        if (vertex.is_ray_lit)
            light_the_ray(wave, vertex, medium);
        const Medium::DistanceSample sample =
            medium.sample_distance(length, wave.sample_2d(vertex, Wave::free_path), path.throughput);
        vertex.distance_pdf = sample.pdf;
        path.throughput *= sample.weight;
        if (sample.is_scattered) {
            vertex.kind = Vertex::Kind::Medium;
            // Clear of both ends, so that what goes on from there is inside for sure.
            const float first = vertex.start->margin;
            const float last = length - (vertex.hit->exists ? margin_of(*vertex.hit, ray.direction) : 0);
            const float distance = first < last ? std::clamp(sample.distance, first, last) : 0.5f * length;
            vertex.in_medium = ray.origin + ray.direction * distance;
        }
    }
}

// Lights that shine from single points light all of the ray that they reach, most of it where few paths are scattered:
// so one of them lights a point of its own choice. Where a path that is scattered there could have been lit by it as
// well, the two are weighed by their pdfs along the ray.
void PathIntegrator::light_the_ray(Wave &wave, const Vertex &vertex, const Medium &medium) const {
    if (is_black(medium.sigma_s))
        return;
    const Path &path = *vertex.path;
    const LightSampleRay lit = ray_in_medium(vertex);
    const LightChoice choice = world.lights.choose_positional(lit, wave.sample_light_choice(vertex));
    if (!(choice.pmf > 0))
        return;
    const RayPart part = world.lights.lit_part(choice.light, lit);
    const Equiangular angles(lit.ray, part, *world.lights.position_of(choice.light));
    float distance = 0;
    if (part.is_empty() || !angles.sample(wave.sample_2d(vertex, Wave::lit_distance).u, distance))
        return;
    const Vec3 point = lit.ray.origin + lit.ray.direction * distance;
    LightSample light;
    if (!world.lights.sample_chosen(choice, point, wave.sample_2d(vertex, Wave::light_point), light))
        return;
    const float pdf = angles.pdf(distance);
    const float mis_weight =
        power_heuristic(pdf * choice.pmf, medium.distance_pdf(distance, path.throughput) *
                                              world.lights.pmf(path.light_context(point), choice.light));
    const Color throughput = path.throughput * (medium.sigma_s * medium.transmittance(distance) * (mis_weight / pdf));
    add_medium_light(wave, vertex, medium, point, throughput, light);
}

// What a sampled light brings at the point where the path is scattered.
void PathIntegrator::light_medium(Wave &wave, const Vertex &vertex) const {
    const Path &path = *vertex.path;
    LightSample light;
    if (!wave.direct_light.sample(path.light_context(vertex.in_medium), wave.sample_light_choice(vertex),
                                  wave.light_points[vertex.lane], light))
        return;
    const Vec3 *position = vertex.is_ray_lit ? world.lights.position_of(light.choice.light) : nullptr;
    float mis_weight = 1;
    if (position) {
        const LightSampleRay lit = ray_in_medium(vertex);
        const float distance = dot(vertex.in_medium - lit.ray.origin, lit.ray.direction);
        const RayPart part = world.lights.lit_part(light.choice.light, lit);
        if (!part.is_empty())
            mis_weight = power_heuristic(vertex.distance_pdf * light.choice.pmf,
                                         Equiangular(lit.ray, part, *position).pdf(distance) *
                                             world.lights.positional_pmf(lit, light.choice.light));
    }
    add_medium_light(wave, vertex, world.media_of(path.media), vertex.in_medium, path.throughput * mis_weight, light);
}

// Light that the phase function scatters towards the path, whose throughput reaches up to there.
void PathIntegrator::add_medium_light(Wave &wave, const Vertex &vertex, const Medium &medium, Vec3 point,
                                      Color throughput, const LightSample &light) const {
    const Path &path = *vertex.path;
    const float phase = medium.phase.evaluate(dot(path.ray.direction, light.to_light));
    if (!(phase > 0))
        return;
    const Color radiance = throughput * phase * light.contribution * DirectLight::mis_weight(light, phase);
    wave.direct_light.add(wave.index_of(path), {point}, path.media, light, clamped(radiance, path.bounces > 0));
}

// The phase function is sampled by its own values, so that the throughput stays. False if no ray can be followed.
bool PathIntegrator::scatter_at_point(const Wave &wave, const Vertex &vertex) const {
    Path &path = *vertex.path;
    const Medium &medium = world.media_of(path.media);
    const Vec3 before = path.ray.direction;
    const Vec3 direction = medium.phase.sample(before, wave.next_directions[vertex.lane]);
    path.vertex = path.light_context(vertex.in_medium);
    path.direction_pdf = medium.phase.evaluate(dot(before, direction));
    path.finds_lights = false;
    return vertex.leave(RayStart{vertex.in_medium}, direction);
}

} // namespace vantor
