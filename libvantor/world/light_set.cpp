// Light set: all lights of a frozen scene, how one is chosen and sampled, and what rays find of them.
#include "libvantor/world/light_set.h"

namespace vantor {

namespace {

template <class Kind> constexpr bool is_surface = !Kind::is_delta && !Kind::is_infinite;
template <class Kind> constexpr bool is_seen_at_infinity = !Kind::is_delta && Kind::is_infinite;
template <class Kind> constexpr bool is_positional = Kind::is_delta && !Kind::is_infinite;

} // namespace

LightSet::LightSet(std::span<const DescribedLight> described, std::span<const Placement> placements) {
    emitters_of.reserve(placements.size());
    for (const Placement &placement : placements) {
        EmitterRange emitters;
        if (placement.light >= 0) {
            const DescribedLight &light = described[static_cast<std::size_t>(placement.light)];
            const Color radiance = *light.area_radiance;
            // Of a trimmed object, or one of many instances, it is not known which points there are.
            const bool is_whole = !placement.instances && placement.object->trimmers.empty();
            if (light.is_on && !is_black(radiance))
                emitters = is_whole
                               ? append_emitters(placement.object->shape, placement.world_from_object, radiance, lights)
                               : append_unsampled_emitter(radiance, lights);
            if (emitters.first >= 0 && light.pattern && lights.size() > static_cast<std::size_t>(emitters.first))
                patterns.add(placement, *light.pattern, radiance, emitters, lights);
        }
        emitters_of.push_back(emitters);
    }
    std::vector<bool> are_hidden(lights.size());
    for (const DescribedLight &light : described)
        if (light.is_on) {
            lights.insert(lights.end(), light.lights.begin(), light.lights.end());
            are_hidden.resize(lights.size(), !light.is_visible);
        }
    make_samplers();
    std::ranges::copy_if(infinite_lights, std::back_inserter(visible_infinite_lights),
                         [&](std::uint32_t light) { return !are_hidden[light]; });
}

void LightSet::make_samplers() {
    std::vector<BvhLightSampler::FiniteLight> finite;
    std::vector<BvhLightSampler::FiniteLight> with_position;
    std::vector<BvhLightSampler::InfiniteLight> infinite;
    finite.reserve(lights.size());
    for (std::uint32_t i = 0; i < lights.size(); ++i)
        std::visit(
            [&]<class Kind>(const Kind &light) {
                if constexpr (is_seen_at_infinity<Kind>)
                    infinite_lights.push_back(i);
                if constexpr (Kind::is_infinite)
                    infinite.push_back({light.bounds(), i});
                else
                    finite.push_back({light.bounds(), i});
                if constexpr (is_positional<Kind>)
                    with_position.push_back(finite.back());
            },
            lights[i]);
    sampler = BvhLightSampler(finite, infinite, lights.size());
    if (!with_position.empty())
        positional = BvhLightSampler(with_position, {}, lights.size());
}

const Vec3 *LightSet::position_of(std::uint32_t light) const {
    return std::visit(
        []<class Kind>(const Kind &kind) -> const Vec3 * {
            if constexpr (is_positional<Kind>)
                return &kind.position;
            else
                return nullptr;
        },
        lights[light]);
}

RayPart LightSet::lit_part(std::uint32_t light, const LightSampleRay &ray) const {
    const RayPart whole{0, ray.length};
    return std::visit(
        [&]<class Kind>(const Kind &kind) {
            if constexpr (is_positional<Kind>)
                return kind.lit_part(ray.ray, whole);
            else
                return whole;
        },
        lights[light]);
}

bool LightSet::sample_chosen(LightChoice choice, Vec3 point, Point2f numbers, LightSample &result) const {
    if (!(choice.pmf > 0))
        return false;
    // Member by member: a copy of the whole would wait until its parts are stored.
    result.choice.light = choice.light;
    result.choice.pmf = choice.pmf;
    return visit_light(
        [&]<class Kind>(const Kind &light) {
            EmissionSample sample;
            if (!light.sample(point, numbers, sample))
                return false;
            if constexpr (is_surface<Kind>)
                if (!patterns.is_empty())
                    sample.radiance =
                        patterns.radiance(choice.light, lights[choice.light], sample.end, length(sample.end - point))
                            .value_or(sample.radiance);
            result.to_light = sample.to_light;
            result.is_infinite = Kind::is_infinite;
            result.is_delta = Kind::is_delta;
            if constexpr (!Kind::is_infinite)
                result.end = sample.end;
            if constexpr (Kind::is_delta) {
                result.contribution = sample.radiance * (1 / choice.pmf);
            } else {
                result.pdf = sample.pdf * choice.pmf;
                if (!(result.pdf > 0 && std::isfinite(result.pdf)))
                    return false;
                result.contribution = sample.radiance * (1 / result.pdf);
            }
            return true;
        },
        lights[choice.light]);
}

void LightSet::sample(const Lanes<Point2f> &numbers, LightLanes &lanes) const {
    Mask are_near;
    sample_by_area(lanes.emitters, lanes.choices, lanes.points, numbers, lanes.samples, are_near);
    for (std::size_t i = 0; i < lane_count; ++i) {
        const LightChoice choice = lanes.choices[i];
        const bool is_sampled = lanes.emitters.are_set[i] && !are_near[i];
        if (!(choice.pmf > 0) || is_sampled)
            continue;
        LightSample sample;
        const bool may_arrive = sample_chosen(choice, lanes.points[i], numbers[i], sample);
        if (may_arrive)
            lanes.samples.set(i, sample);
        lanes.samples.may_arrive[i] = may_arrive;
    }
}

Color LightSet::radiance(int emitter, const Hit &hit) const {
    if (!patterns.is_empty())
        if (const std::optional<Color> patterned = patterns.radiance(static_cast<std::uint32_t>(emitter), hit))
            return *patterned;
    return std::visit(
        []<class Kind>(const Kind &light) {
            if constexpr (is_surface<Kind>)
                return light.radiance();
            else
                return Color();
        },
        lights[static_cast<std::size_t>(emitter)]);
}

float LightSet::pdf(int emitter, const LightSampleContext &reference, Vec3 direction, const Hit &hit) const {
    const float pmf = sampler.pmf(reference, static_cast<std::uint32_t>(emitter));
    return std::visit(
        [&]<class Kind>(const Kind &light) {
            if constexpr (is_surface<Kind>)
                return pmf * light.pdf(reference.point, direction, hit.point);
            else
                return 0.0f;
        },
        lights[static_cast<std::size_t>(emitter)]);
}

SeenLight LightSet::seen_at_infinity(std::uint32_t light, Vec3 direction) const {
    return std::visit(
        [&]<class Kind>(const Kind &kind) {
            if constexpr (is_seen_at_infinity<Kind>)
                return kind.seen(direction);
            else
                return SeenLight{};
        },
        lights[light]);
}

} // namespace vantor
