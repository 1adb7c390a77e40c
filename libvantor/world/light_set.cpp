// Light set: all lights of a frozen scene, how one is chosen and sampled, and what rays find of them.
#include "libvantor/world/light_set.h"

namespace vantor {

namespace {

template <class Kind> constexpr bool is_surface = !Kind::is_delta && !Kind::is_infinite;
template <class Kind> constexpr bool is_seen_at_infinity = !Kind::is_delta && Kind::is_infinite;

} // namespace

LightSet::LightSet(std::span<const DescribedLight> described, std::span<const Placement> placements, float scene_radius)
    : sampler({}, {}) {
    std::vector<std::size_t> groups; // the first light of each object that shines, and of each described light
    emitters_of.reserve(placements.size());
    for (const Placement &placement : placements) {
        EmitterRange emitters;
        if (placement.light >= 0) {
            const DescribedLight &light = described[static_cast<std::size_t>(placement.light)];
            const Color radiance = *light.area_radiance;
            groups.push_back(lights.size());
            // Of a trimmed object, or one of many instances, it is not known which points there are.
            const bool is_whole = !placement.instances && placement.object->trimmers.empty();
            if (light.is_on && !is_black(radiance))
                emitters = is_whole
                               ? append_emitters(placement.object->shape, placement.world_from_object, radiance, lights)
                               : append_unsampled_emitter(radiance, lights);
        }
        emitters_of.push_back(emitters);
    }
    for (const DescribedLight &light : described) {
        groups.push_back(lights.size());
        if (light.is_on)
            lights.insert(lights.end(), light.lights.begin(), light.lights.end());
    }
    groups.push_back(lights.size());

    std::vector<float> powers;
    powers.reserve(lights.size());
    for (const Light &light : lights)
        std::visit(
            [&]<class Kind>(const Kind &kind) {
                if constexpr (is_seen_at_infinity<Kind>)
                    infinite_lights.push_back(static_cast<std::uint32_t>(powers.size()));
                powers.push_back(kind.power(scene_radius));
            },
            light);
    sampler = PowerLightSampler(powers, groups);
}

const Vec3 *LightSet::position_of(const LightSampleContext &reference, double u) const {
    const LightChoice choice = sampler.sample(reference, u);
    if (!(choice.pmf > 0))
        return nullptr;
    return std::visit(
        []<class Kind>(const Kind &light) -> const Vec3 * {
            if constexpr (Kind::is_delta && !Kind::is_infinite)
                return &light.position;
            else
                return nullptr;
        },
        lights[choice.light]);
}

bool LightSet::sample(const LightSampleContext &reference, double u, Point2f numbers, LightSample &result) const {
    const LightChoice choice = sampler.sample(reference, u);
    if (!(choice.pmf > 0))
        return false;
    return std::visit(
        [&]<class Kind>(const Kind &light) {
            EmissionSample sample;
            if (!light.sample(reference.point, numbers, sample))
                return false;
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

Color LightSet::radiance(int emitter) const {
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

SeenLight LightSet::seen_at_infinity(std::uint32_t light, const LightSampleContext &reference, Vec3 direction) const {
    SeenLight result = std::visit(
        [&]<class Kind>(const Kind &kind) {
            if constexpr (is_seen_at_infinity<Kind>)
                return kind.seen(direction);
            else
                return SeenLight{};
        },
        lights[light]);
    result.pdf = sampler.pmf(reference, light) * result.pdf;
    return result;
}

} // namespace vantor
