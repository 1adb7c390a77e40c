// Gathering: what the patches of a scene see, and the light that reaches them straight from lights.
#pragma once

#include "libvantor/integrators/path_integrator.h"
#include "libvantor/radiosity/patches.h"

namespace vantor {

/// A patch has two sides, which are numbered in turn: the front of patch p is 2 p, its back 2 p + 1.
constexpr std::uint32_t side_of_patch(std::uint32_t patch, bool is_front) { return 2 * patch + (is_front ? 0u : 1u); }

/// What one side sees. Its form factor to another side is that side's part of the rays: a row of a matrix with mostly
/// zeros.
struct Row {
    std::vector<std::uint32_t> seen; ///< A side for each ray that met one.
    int rays = 0;                    ///< All that were shot. The rest met other surfaces, or nothing.
    Color followed{};                ///< The light that the rays found that met other surfaces; irradiance times rays.
};

/// What is known of one side before any light has been exchanged.
struct SideLight {
    Color reflectance;
    Color direct; ///< The irradiance straight from lights.
};

/// Rays from the patches of a world. Every random number is a function of side and ray.
class Gathering {
  public:
    /// A multiple of 32 rays from each side. The world, the patches and the interrupt have to outlive it.
    Gathering(const World &of, const Patches &from, int rays, const Interrupt &interrupt)
        : world(of), patches(from), ray_count(rays), integrator(of, Settings(), first_path_dimension, interrupt) {}

    int rays() const { return ray_count; }

    /// Shoots the rays from first on, and not from end on, and adds what they see. They leave like light that is
    /// scattered diffusely, so that each ray stands for the same part of the irradiance (Nusselt's analogy; Malley's
    /// method: Cohen, Wallace, "Radiosity and Realistic Image Synthesis", 1993, 4.9).
    /// Throws Interrupted.
    void see(std::uint32_t side, int first, int end, Row &row) const;

    /// Direct light by as many samples of lights as there are of directions, and the mean reflectance of the samples.
    /// Throws Interrupted.
    SideLight light_of(std::uint32_t side) const;

  private:
    struct Departure;

    // The dimensions of a sample: it takes the first itself, the path that may follow takes the rest.
    enum Dimension : std::uint32_t { point_on_patch, direction, light_point, light_choice, first_path_dimension };

    // Of the samples from first on, and not from end on.
    std::vector<Departure> departures(std::uint32_t side, int first, int end, int samples) const;
    MediumStack media_around(const Departure &departure) const;

    const World &world;
    const Patches &patches;
    int ray_count;
    PathIntegrator integrator;
};

} // namespace vantor
