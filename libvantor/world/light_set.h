// Light set: all lights of a frozen scene, how one is chosen and sampled, and what rays find of them.
#pragma once

#include "libvantor/description/registry.h"
#include "libvantor/embree/hit.h"
#include "libvantor/lights/bvh_light_sampler.h"
#include "libvantor/world/emission_patterns.h"
#include "libvantor/world/light_lanes.h"

#include <span>

namespace vantor {

/// All lights that are on. Constant once made.
class LightSet {
  public:
    /// No lights.
    LightSet() = default;

    LightSet(std::span<const DescribedLight> described, std::span<const Placement> placements);

    /// Whether sample() uses its number u.
    bool has_choice() const { return lights.size() > 1; }

    /// Chooses a light and samples it. False where none of its light can arrive.
    bool sample(const LightSampleContext &reference, double u, Point2f numbers, LightSample &result) const {
        return sample_chosen(sampler.sample(reference, u), reference.point, numbers, result);
    }

    /// Samples a light that was chosen. False where none of its light can arrive.
    bool sample_chosen(LightChoice choice, Vec3 point, Point2f numbers, LightSample &result) const;

    /// Likewise for many points: chooses a light for one lane, and then samples those of all lanes, flat emitters side
    /// by side.
    void choose(const LightSampleContext &reference, double u, std::size_t lane, LightLanes &lanes) const {
        const LightChoice choice = sampler.sample(reference, u);
        lanes.choices[lane] = choice;
        lanes.points.set(lane, reference.point);
        if (!(choice.pmf > 0))
            return;
        const auto *emitter = std::get_if<FlatEmitter>(&lights[choice.light]);
        if (emitter && emitter->outline != FlatEmitter::Outline::Ring && patterns.is_empty())
            lanes.emitters.set(lane, *emitter);
    }
    void sample(const Lanes<Point2f> &numbers, LightLanes &lanes) const;

    /// Chooses among the lights that shine from single points, for a ray as a whole. The pmf is 0 if there are none.
    LightChoice choose_positional(const LightSampleRay &ray, double u) const { return positional.sample(ray, u); }
    float positional_pmf(const LightSampleRay &ray, std::uint32_t light) const { return positional.pmf(ray, light); }
    bool has_positional() const { return !positional.is_empty(); }

    /// Where a light stands; null if it does not shine from a single point.
    const Vec3 *position_of(std::uint32_t light) const;

    /// The points of a ray that such a light may reach.
    RayPart lit_part(std::uint32_t light, const LightSampleRay &ray) const;

    /// The probability with which sample(reference) chooses a light.
    float pmf(const LightSampleContext &reference, std::uint32_t light) const { return sampler.pmf(reference, light); }

    /// The emitter at a hit, which shines from the front; -1 if nothing shines there.
    int emitter_at(const Hit &hit) const { return emitters_of[hit.placement].of(hit.primitive); }

    /// Where a ray has hit the emitter.
    Color radiance(int emitter, const Hit &hit) const;

    /// The pdf with which sample(reference) chooses the emitter and the direction of the ray that hit it.
    float pdf(int emitter, const LightSampleContext &reference, Vec3 direction, const Hit &hit) const;

    /// What a ray that leaves the scene finds of each infinite light with an extent: calls visit(light, seen). The
    /// camera does not see all of them. Whoever needs the pmf() of the light asks for it, as that takes longer.
    template <class Visit> void for_each_infinite(Vec3 direction, bool is_from_camera, Visit visit) const {
        for (const std::uint32_t light : is_from_camera ? visible_infinite_lights : infinite_lights) {
            const SeenLight seen = seen_at_infinity(light, direction);
            if (!is_black(seen.radiance))
                visit(light, seen);
        }
    }

  private:
    SeenLight seen_at_infinity(std::uint32_t light, Vec3 direction) const;
    void make_samplers();

    std::vector<Light> lights;
    std::vector<EmitterRange> emitters_of;              // for each placement
    std::vector<std::uint32_t> infinite_lights;         // with an extent
    std::vector<std::uint32_t> visible_infinite_lights; // the same that the camera sees
    EmissionPatterns patterns;
    BvhLightSampler sampler;
    BvhLightSampler positional; // only of lights that shine from single points
};

} // namespace vantor
