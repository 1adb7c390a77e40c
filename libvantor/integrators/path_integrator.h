// Path integrator: the light that arrives along rays, by random paths.
#pragma once

#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/integrators/path.h"

#include <span>

namespace vantor {

struct Vertex;
class Wave;

/// Kajiya, "The Rendering Equation", 1986; the estimator follows Veach, "Robust Monte Carlo Methods for Light Transport
/// Simulation", 1997, chapters 8 to 10. Constant, and used by all threads.
class PathIntegrator {
  public:
    /// Paths use dimensions of their samplers from the first on. With a lookup, they end where it tells them their
    /// indirect light. World and cache have to outlive it.
    PathIntegrator(const World &of, const Settings &by, std::uint32_t from_dimension, const Interrupt &until,
                   const IrradianceLookup &lookup = {})
        : world(of), settings(by), first_dimension(from_dimension), interrupt(until), indirect(lookup) {}

    /// Takes the paths to their ends: each path's radiance is then an estimate of the radiance that arrives along its
    /// first ray, unbiased but for the clamp of the settings.
    ///
    /// Paths of one call advance together, bounce by bounce, because several rays are traced at once much faster than
    /// one by one (Laine, Karras, Aila, "Megakernels Considered Harmful", 2013). First rays should lie close together.
    ///
    /// False if it was interrupted, after hundreds of bounces in a dense medium: the paths are unfinished then. Callers
    /// that keep other paths leave these out; callers that keep nothing partial throw Interrupted.
    [[nodiscard]] bool trace(std::span<Path> paths) const;

  private:
    // The stages of a step, in their order. Each works on a chunk of the wave's vertices and decides which go on;
    // shadow rays are those of the whole wave. They are kept apart because g++ inlines the small functions that they
    // call into each of them, but not into one very large function.
    [[gnu::noinline]] void scatter_in_media(Wave &wave, std::span<Vertex> vertices) const;
    [[gnu::noinline]] void add_emission(std::span<Vertex> vertices) const;
    [[gnu::noinline]] void pass_through(const Wave &wave, std::span<Vertex> vertices) const;
    [[gnu::noinline]] void record_first_hits(const Wave &wave, std::span<const Vertex> vertices) const;
    [[gnu::noinline]] static void record_guides(const Wave &wave, std::span<const Vertex> vertices);
    [[gnu::noinline]] void end_at_limits(std::span<Vertex> vertices) const;
    [[gnu::noinline]] void look_irradiance_up(std::span<Vertex *const> in_lanes) const;
    [[gnu::noinline]] void prepare_bsdfs(Wave &wave, std::span<Vertex *const> in_lanes) const;
    [[gnu::noinline]] void sample_direct_light(Wave &wave, std::span<Vertex *const> in_lanes) const;
    [[gnu::noinline]] void scatter(const Wave &wave, std::span<Vertex *const> in_lanes) const;
    [[gnu::noinline]] void play_roulette(const Wave &wave, std::span<Vertex *const> in_lanes) const;
    [[gnu::noinline]] static void trace_shadow_rays(Wave &wave, std::span<Path> paths);

    // What stages do with a single vertex.
    void light_the_ray(Wave &wave, const Vertex &vertex, const Medium &medium) const;
    void light_medium(Wave &wave, const Vertex &vertex) const;
    void add_medium_light(Wave &wave, const Vertex &vertex, const Medium &medium, Vec3 point, Color throughput,
                          const LightSample &light) const;
    void light_surface(Wave &wave, const Vertex &vertex, const LightSample &light) const;
    void add_crossing_light(Wave &wave, const Vertex &vertex, const LightSample &light, Color radiance) const;
    bool scatter_at_surface(const Wave &wave, const Vertex &vertex) const;
    bool leave_surface(const Vertex &vertex, Vec3 beside, Vec3 direction) const;
    bool scatter_at_point(const Wave &wave, const Vertex &vertex) const;

    bool is_at_last_bounce(const Path &path) const {
        return settings.max_bounces < Settings::any_bounces && path.bounces >= settings.max_bounces;
    }
    Color clamped(Color radiance, bool is_indirect) const;
    const Placement &placement_at(const Hit &hit) const { return world.placements[hit.placement]; }

    const World &world;
    const Settings settings;
    const std::uint32_t first_dimension;
    const Interrupt &interrupt;
    const IrradianceLookup indirect;
};

} // namespace vantor
