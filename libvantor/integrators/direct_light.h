// Direct light: sampling lights, weighing the samples against rays that find lights by themselves, and shadow rays.
#pragma once

#include "libvantor/integrators/mis.h"
#include "libvantor/integrators/shadow_rays.h"

namespace vantor {

/// Samples of lights, on their way to receivers: vertices of paths, or sides of patches. They are collected, so that
/// their shadow rays are traced together.
class DirectLight {
  public:
    /// The world has to outlive it.
    explicit DirectLight(const World &of) : world(of) {}

    /// The random number that chooses a light. It is made only where there is something to choose.
    double choice(const Sampler &sampler, std::uint32_t dimension) const {
        return world.lights.has_choice() ? sampler.get_1d(dimension) : 0.0;
    }

    /// A point of a light as seen from the reference point; false if none of its light can arrive there.
    bool sample(const LightSampleContext &reference, double light_choice, Point2f numbers, LightSample &result) const {
        return world.lights.sample(reference, light_choice, numbers, result);
    }

    /// The weight of such a sample, where a ray could have found the light too: with that pdf, per solid angle.
    static float mis_weight(const LightSample &light, float pdf_of_ray) {
        return vantor::mis_weight(light.is_delta, light.pdf, pdf_of_ray);
    }

    /// Notes a sample for a receiver, from which the shadow ray starts: what it brings if all of it arrives. False if
    /// the ray cannot be followed. In a world where no surface may be crossed.
    bool add(std::uint32_t receiver, Vec3 from, const LightSample &light, Color unoccluded) {
        return add(receiver,
                   light.is_infinite ? Segment{from, light.to_light, INFINITY} : Segment{from, light.end - from, 1},
                   unoccluded);
    }
    bool add(std::uint32_t receiver, const Segment &segment, Color unoccluded) {
        if (!is_traceable(segment.from, segment.direction))
            return false;
        shadow_rays.segments.push_back(segment);
        samples.push_back({receiver, unoccluded});
        return true;
    }

    /// Likewise in any world: the ray starts in those media.
    void add(std::uint32_t receiver, const RayStart &start, const MediumStack &media, const LightSample &light,
             Color unoccluded) {
        if (add(receiver, start.origin, light, unoccluded) && world.tracer.has_crossings()) {
            shadow_rays.starts.push_back(start);
            shadow_rays.media.push_back(media);
        }
    }

    /// Traces the shadow rays of all samples that are noted, forgets those, and calls receive(receiver, light) for each
    /// with what arrives.
    template <class Receive> void trace_shadow_rays(Receive receive) {
        if (world.tracer.has_crossings()) {
            transmit(shadow_rays, world, fractions);
            for (std::size_t i = 0; i < samples.size(); ++i)
                receive(samples[i].receiver, samples[i].unoccluded * fractions[i]);
        } else {
            are_occluded.resize(samples.size());
            world.tracer.occluded(shadow_rays.segments, are_occluded);
            for (std::size_t i = 0; i < samples.size(); ++i)
                if (!are_occluded[i])
                    receive(samples[i].receiver, samples[i].unoccluded);
        }
        samples.clear();
        shadow_rays.clear();
    }

  private:
    struct Sample {
        std::uint32_t receiver;
        Color unoccluded;
    };

    const World &world;
    std::vector<Sample> samples;
    ShadowRays shadow_rays;         // of each sample
    std::vector<Color> fractions;   // of each sample that arrive,
    std::vector<char> are_occluded; // or whether none does
};

} // namespace vantor
