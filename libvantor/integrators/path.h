// Path: the light that arrives along rays.
#pragma once

#include "libvantor/film/aov_sample.h"
#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/world/world.h"

namespace vantor {

/// One random path, from the camera on.
struct Path {
    Ray ray;                   ///< From its latest vertex; at first from the camera.
    const Sampler sampler;     ///< Every random number of the path.
    MediumStack media;         ///< Those that the ray starts in.
    AovSample *aovs = nullptr; ///< What it sees first goes here; null if nobody asks.
    Color radiance{};          ///< What has been found so far of the radiance that arrives at the camera.

    Color throughput{1, 1, 1};      ///< The product of value * cosine / pdf over its vertices.
    Vec3 vertex{};                  ///< The point of a surface or medium that the ray left.
    float direction_pdf = 0;        ///< Per solid angle, with which the ray's direction was drawn there.
    int bounces = 0;                ///< How often its direction has changed.
    bool finds_lights = true;       ///< Only the ray could find a light: it left the camera, or a specular surface.
    bool finds_only_lights = false; ///< Its ray is the last, and counts only for the light that it may find.
    int diffuse_surfaces = 0;       ///< How many it has met.
};

/// Takes the paths to their ends: each path's radiance is then an estimate of the radiance that arrives along its first
/// ray, unbiased but for the clamp of the settings. The paths use dimensions of their samplers from first_dimension on.
///
/// Paths of one call advance together, bounce by bounce, because several rays are traced at once much faster than one
/// by one (Laine, Karras, Aila, "Megakernels Considered Harmful", 2013). First rays should lie close together.
///
/// With a lookup, paths end where they are told their indirect light.
void trace_paths(std::span<Path> paths, const World &world, const Settings &settings, std::uint32_t first_dimension,
                 const IrradianceLookup &indirect = {});

/// Multiple importance sampling: the weight of a sample drawn with one pdf where another could have drawn it too.
/// The power heuristic with exponent 2, Veach 9.2.4. Squares of pdfs may overflow, which a ratio survives. What
/// is drawn with pdf 0 is left to the other.
inline float power_heuristic(float pdf, float other_pdf) {
    if (!(pdf > 0))
        return 0;
    const float ratio = other_pdf / pdf;
    return 1 / (1 + ratio * ratio);
}

} // namespace vantor
