// Path: one random path of light, followed from the camera on.
#pragma once

#include "libvantor/film/aov_table.h"
#include "libvantor/film/guides.h"
#include "libvantor/world/world.h"

namespace vantor {

/// What every step of every path reads and writes stands first: a wave's paths then fill few cache lines.
struct Path {
    Path(const Ray &first_ray, const Sampler &its_sampler, const MediumStack &around, AovSample *receiver = nullptr,
         GuideSample *guided = nullptr)
        : ray(first_ray), sampler(its_sampler), aovs(receiver), guides(guided), media(around) {}

    Ray ray;                        ///< From its latest vertex; at first from the camera.
    const Sampler sampler;          ///< Every random number of the path.
    Color throughput{1, 1, 1};      ///< The product of value * cosine / pdf over its vertices.
    Color radiance{};               ///< What has been found so far of the radiance that arrives at the camera.
    LightSampleContext vertex{{}};  ///< The point of a surface or medium that the ray left.
    float direction_pdf = 0;        ///< Per solid angle, with which the ray's direction was drawn there.
    int bounces = 0;                ///< How often its direction has changed.
    bool finds_lights = true;       ///< Only the ray could find a light: it left the camera, or a specular surface.
    bool finds_only_lights = false; ///< Its ray is the last, and counts only for the light that it may find.
    int diffuse_surfaces = 0;       ///< How many it has met.

    AovSample *aovs;     ///< Receives what the path sees first; may be null.
    GuideSample *guides; ///< Receives what a denoiser goes by; may be null.
    MediumStack media;   ///< Those that the ray starts in.

    /// Whether the ray is still the camera's: at most passed straight through surfaces that are not quite opaque.
    bool is_from_camera() const { return bounces == 0; }

    /// The context of light samples at its vertex. Once it finds only lights, roulette ends most of its rays, so that
    /// light samples take their full share.
    LightSampleContext light_context(LightSampleContext at) const {
        at.has_bsdf_samples = !finds_only_lights;
        return at;
    }

    /// Goes on from there. False if the ray cannot be followed.
    bool leave(Vec3 from, Vec3 direction) {
        ray = {from, direction};
        return is_traceable(from, direction);
    }
};

} // namespace vantor
