// Wave: paths that advance together, and the vertices of their present step.
#pragma once

#include "libvantor/integrators/direct_light.h"
#include "libvantor/integrators/path.h"
#include "libvantor/world/surface.h"

#include <optional>
#include <span>
#include <vector>

namespace vantor {

/// Where a path has arrived: the record that the stages of a step hand on.
struct Vertex {
    enum class Kind : std::uint8_t {
        Ended,   ///< The path is at its end.
        Escaped, ///< Likewise: beyond everything.
        Passed,  ///< On a surface that the path goes straight through.
        Surface, ///< On a surface that scatters it.
        Medium,  ///< At a point of a medium that scatters it.
    };

    Kind kind = Kind::Ended;
    bool is_ray_lit = false; ///< Lights that shine from single points lit the whole ray that led here.
    Path *path = nullptr;
    const Hit *hit = nullptr; ///< Of the path's ray.
    Point2f light_point{};    ///< The samples that nearly every vertex needs. See Wave for the others.
    Point2f next_direction{};
    Vec3 in_medium{};                ///< The point of a medium.
    float distance_pdf = 0;          ///< Per length, with which that was drawn along the ray; unset elsewhere.
    std::optional<Surface> surface;  ///< At the hit, where there is one.
    std::optional<SurfaceBsdf> bsdf; ///< Of the surface, if it scatters the path.

    // Not defaulted: value-initialization would then fill the storage of surface and BSDF with zeros first.
    Vertex() {} // NOLINT(modernize-use-equals-default)

    bool is_scattering() const { return kind == Kind::Surface || kind == Kind::Medium; }
    bool goes_on() const { return is_scattering() || kind == Kind::Passed; }
};

/// The paths of one call that have not ended, with a vertex of each.
class Wave {
  public:
    /// The dimensions of the samples of one step.
    enum Dimension : std::uint32_t {
        light_point,
        light_choice,
        next_direction,
        survival,
        lobe,
        passage,
        free_path,
        lit_distance,
        dimensions_per_step
    };

    Wave(std::span<Path> paths, const World &world, std::uint32_t first_dimension)
        : direct_light(world), dimension(first_dimension), rays(paths.size()), hits(paths.size()),
          samplers(paths.size()), light_points(paths.size()), next_directions(paths.size()), all(paths.size()) {
        growing.reserve(paths.size());
        for (Path &path : paths)
            if (is_traceable(path.ray.origin, path.ray.direction))
                growing.push_back(&path);
        records_aovs = std::ranges::any_of(paths, [](const Path &path) { return path.aovs != nullptr; });
    }

    bool has_aovs() const { return records_aovs; } ///< Whether any path has.
    bool is_over() const { return growing.empty(); }
    std::span<Vertex> vertices() { return std::span(all).first(growing.size()); }
    std::uint32_t index_of(const Vertex &vertex) const { return static_cast<std::uint32_t>(&vertex - all.data()); }

    /// Finds the first surface on every ray: a vertex of kind Surface or Escaped.
    void intersect(const Tracer &tracer, bool are_coherent) {
        const std::size_t count = growing.size();
        for (std::size_t i = 0; i < count; ++i) {
            rays[i] = growing[i]->ray;
            samplers[i] = growing[i]->sampler;
        }
        if (tracer.has_crossings()) {
            starts.resize(count);
            for (std::size_t i = 0; i < count; ++i)
                starts[i] = growing[i]->start;
        }
        tracer.intersect(std::span(rays).first(count), starts, are_coherent, hits);
        get_2d_of(std::span(samplers).first(count), dimension + light_point, light_points);
        get_2d_of(std::span(samplers).first(count), dimension + next_direction, next_directions);
        for (std::size_t i = 0; i < count; ++i) {
            Vertex &vertex = all[i];
            vertex.kind = hits[i].exists ? Vertex::Kind::Surface : Vertex::Kind::Escaped;
            vertex.is_ray_lit = false;
            vertex.path = growing[i];
            vertex.hit = &hits[i];
            vertex.light_point = light_points[i];
            vertex.next_direction = next_directions[i];
        }
    }

    /// Calls work for all vertices in chunks, in their order. A chunk is small enough to stay in the first-level cache
    /// from one stage to the next.
    template <class Work> void for_each_chunk(Work work) {
        constexpr std::size_t size = 16;
        for (std::span<Vertex> rest = vertices(); !rest.empty(); rest = rest.subspan(std::min(size, rest.size())))
            work(rest.first(std::min(size, rest.size())));
    }

    // The other samples of the present step, made where they are needed.
    float sample_unstratified(const Vertex &vertex, Dimension which) const {
        return vertex.path->sampler.unstratified(dimension + which);
    }
    Point2f sample_2d(const Vertex &vertex, Dimension which) const {
        return vertex.path->sampler.get_2d(dimension + which);
    }
    double sample_light_choice(const Vertex &vertex) const {
        return direct_light.choice(vertex.path->sampler, dimension + light_choice);
    }

    /// To the next step, without the paths that have ended.
    void advance() {
        std::size_t still_growing = 0;
        for (const Vertex &vertex : vertices())
            if (vertex.goes_on())
                growing[still_growing++] = vertex.path;
        growing.resize(still_growing);
        dimension += dimensions_per_step;
    }

    DirectLight direct_light; ///< Of the present step. Receivers are vertices, by index.

  private:
    std::uint32_t dimension; // the first of the present step
    bool records_aovs = false;
    std::vector<Path *> growing;
    std::vector<Ray> rays;
    std::vector<RayStart> starts; // of the rays; none where nothing may be crossed
    std::vector<Hit> hits;
    std::vector<Sampler> samplers;
    std::vector<Point2f> light_points;
    std::vector<Point2f> next_directions;
    std::vector<Vertex> all;
};

} // namespace vantor
