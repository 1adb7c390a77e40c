// Guides: what a denoiser knows of each pixel besides its colour.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/base/numbers.h"
#include "libvantor/base/sample_range.h"

#include <algorithm>
#include <array>

namespace vantor {

/// What a sample of a pixel sees first that is neither smooth glass nor a mirror: behind these, what is seen there.
struct GuideSample {
    Vec3 from{};            ///< Where the path was last bent; given: its start.
    Color albedo{1, 1, 1};  ///< Times what glass and mirrors on the way leave of it. Of no surface 1.
    Vec3 normal{};          ///< On the side that is seen; 0 where there is no surface.
    float depth = 0;        ///< Along the path; likewise.
    Color emission{};       ///< Of what is seen straight or in mirrors: no noise, but for the edges of lights.
    bool is_certain = true; ///< No glass on the way, at which chance decides what is seen.
    bool is_found = false;  ///< Nothing further on the path counts.
};

/// The samples of a pixel are summed in so many runs.
constexpr int run_count = 8;

/// Which of them a sample of a picture belongs to that has so many. Every group of samples is divided among all runs,
/// so that it makes no difference in how many rounds a pass makes them.
constexpr int run_of(int sample, int samples) {
    return sample % samples_per_group * run_count / std::min(samples, samples_per_group);
}

/// What the denoiser is told of a pixel: sums over its samples.
///
/// Samples of a pixel are stratified, so that their variance says too much of the error of their mean. Runs of
/// consecutive ones are stratified themselves and nearly independent of each other: how their means differ says it
/// better.
struct GuideSums {
    std::array<Color, run_count> radiance{}; ///< Of each run, without the emission.
    Color emission{};                        ///< Of surfaces, and what is seen in them.
    Color albedo{};
    Vec3 normal{};
    float depth = 0;
    float depth_squares = 0;
    float albedo_squares = 0; ///< Of the luminance.
    float surfaces = 0;       ///< How many samples see one.

    void add(Color of_sample, const GuideSample &seen, int run) {
        if (is_finite(of_sample)) {
            radiance[static_cast<std::size_t>(run)] += of_sample + seen.emission * -1;
            if (seen.depth > 0)
                emission += seen.emission;
        }
        albedo += seen.albedo;
        normal = normal + seen.normal;
        depth += seen.depth;
        depth_squares += seen.depth * seen.depth;
        albedo_squares += luminance(seen.albedo) * luminance(seen.albedo);
        surfaces += dot(seen.normal, seen.normal) > 0 ? 1.0f : 0.0f;
    }

    void add(const GuideSums &later) {
        for (std::size_t i = 0; i < radiance.size(); ++i)
            radiance[i] += later.radiance[i];
        emission += later.emission;
        albedo += later.albedo;
        normal = normal + later.normal;
        depth += later.depth;
        depth_squares += later.depth_squares;
        albedo_squares += later.albedo_squares;
        surfaces += later.surfaces;
    }
};

} // namespace vantor
