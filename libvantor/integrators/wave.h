// Wave: paths that advance together, and the vertices of their present step.
#pragma once

#include "libvantor/integrators/diffuse_lanes.h"
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
        Escaped, ///< Likewise: beyond everything. Those of all further kinds go on.
        Passed,  ///< On a surface that the path goes straight through.
        Surface, ///< On a surface that scatters it; so does what follows.
        Medium,  ///< At a point of a medium that scatters it.
    };

    Kind kind = Kind::Ended;
    bool is_ray_lit = false; ///< Lights that shine from single points lit the whole ray that led here.
    std::uint32_t lane = 0;  ///< Where it is shaded side by side with others: see Wave::put_in_lanes().
    Path *path = nullptr;
    RayStart *start = nullptr;       ///< Of the path's ray, where surfaces may be crossed.
    const Hit *hit = nullptr;        ///< Of it.
    Vec3 in_medium{};                ///< The point of a medium.
    float distance_pdf = 0;          ///< Per length, with which that was drawn along the ray; unset elsewhere.
    std::optional<Surface> surface;  ///< At the hit, where there is one.
    std::optional<SurfaceBsdf> bsdf; ///< Of the surface, if it scatters the path and is not diffuse.

    // Not defaulted: value-initialization would then fill the storage of surface and BSDF with zeros first.
    Vertex() {} // NOLINT(modernize-use-equals-default)

    /// The path goes on from there, in a world where surfaces may be crossed. False if the ray cannot be followed.
    bool leave(const RayStart &from, Vec3 direction) const {
        *start = from;
        return path->leave(from.origin, direction);
    }

    bool is_scattering() const { return kind >= Kind::Surface; }
    bool goes_on() const { return kind >= Kind::Passed; }
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

    Wave(std::span<Path> paths, const World &its_world, std::uint32_t first_dimension)
        : direct_light(its_world), world(its_world), first_path(paths.data()), dimension(first_dimension) {
        growing.reserve(paths.size());
        for (Path &path : paths)
            if (is_traceable(path.ray.origin, path.ray.direction))
                growing.push_back(&path);
        rays.reserve(growing.size());
        hits.resize(growing.size());
        if (world.tracer.has_crossings()) {
            starts.reserve(growing.size());
            path_starts.resize(paths.size());
        }
        records_aovs = std::ranges::any_of(paths, [](const Path &path) { return path.aovs != nullptr; });
        records_guides = std::ranges::any_of(paths, [](const Path &path) { return path.guides != nullptr; });
    }

    bool has_aovs() const { return records_aovs; } ///< Whether any path has.
    bool has_guides() const { return records_guides; }
    bool is_over() const { return growing.empty(); }

    /// Takes each path a step further: finds the first surface on its ray, a vertex of kind Surface or Escaped, and
    /// calls work for the vertices, chunk by chunk. Paths whose vertices do not go on then have ended. All rays are
    /// traced first, so that the code of neither Embree nor the stages drives the other's out of the cache.
    template <class Work> void advance(bool are_coherent, Work work) {
        intersect(are_coherent);
        std::size_t still_growing = 0;
        for (std::size_t first = 0; first < growing.size(); first += chunk_size) {
            const std::span<Vertex> vertices = chunk(first);
            work(vertices);
            for (const Vertex &vertex : vertices) {
                growing[still_growing] = vertex.path;
                still_growing += vertex.goes_on() ? 1 : 0;
            }
        }
        growing.resize(still_growing);
        dimension += dimensions_per_step;
    }

    std::uint32_t index_of(const Path &path) const { return static_cast<std::uint32_t>(&path - first_path); }

    /// Gives lanes to those vertices of a chunk that scatter their paths, one after the other, and makes the samples
    /// that nearly all of them need.
    std::span<Vertex *const> put_in_lanes(std::span<Vertex> vertices) {
        // Without branches, here and above: which paths go on is unpredictable.
        std::uint32_t count = 0;
        for (Vertex &vertex : vertices) {
            in_lanes[count] = &vertex;
            vertex.lane = count;
            count += vertex.is_scattering() ? 1 : 0;
        }
        for (std::size_t i = 0; i < count; ++i)
            samplers[i] = in_lanes[i]->path->sampler;
        get_2d_of(std::span(samplers).first(count), dimension + light_point, light_points);
        get_2d_of(std::span(samplers).first(count), dimension + next_direction, next_directions);
        return std::span(in_lanes).first(count);
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

    // Of the vertices in lanes.
    DiffuseLanes diffuse;
    CarriedLanes carried;
    LightLanes lights;
    Lanes<Point2f> light_points{}; ///< The samples that nearly every vertex needs.
    Lanes<Point2f> next_directions{};

    DirectLight direct_light; ///< Of the present step. Receivers are paths, by index.

  private:
    // As many rays as Embree takes at once, and few enough vertices to stay in the first-level cache from one stage to
    // the next.
    static constexpr std::size_t chunk_size = lane_count;

    void intersect(bool are_coherent) {
        rays.clear();
        starts.clear();
        masks.clear();
        for (const Path *path : growing)
            rays.push_back(path->ray);
        if (world.tracer.has_crossings())
            for (const Path *path : growing)
                starts.push_back(path_starts[index_of(*path)]);
        if (world.has_hidden)
            for (const Path *path : growing)
                masks.push_back(path->is_from_camera() ? mask_of_camera : mask_of_all);
        world.tracer.intersect(rays, starts, are_coherent, hits, masks);
    }

    std::span<Vertex> chunk(std::size_t first) {
        const std::size_t count = std::min(chunk_size, growing.size() - first);
        for (std::size_t i = 0; i < count; ++i) {
            Vertex &vertex = all[i];
            const Hit &hit = hits[first + i];
            vertex.kind = hit.exists ? Vertex::Kind::Surface : Vertex::Kind::Escaped;
            vertex.is_ray_lit = false;
            vertex.path = growing[first + i];
            vertex.start = path_starts.empty() ? nullptr : &path_starts[index_of(*vertex.path)];
            vertex.hit = &hit;
        }
        return std::span(all).first(count);
    }

    const World &world;
    const Path *const first_path;
    std::uint32_t dimension; // the first of the present step
    bool records_aovs = false;
    bool records_guides = false;
    std::vector<Path *> growing;
    std::vector<RayStart> path_starts; // of the ray of each path; in a world where surfaces may be crossed

    // Of the present step, for each path that grows.
    std::vector<Ray> rays;
    std::vector<RayStart> starts; // likewise
    std::vector<RayMask> masks;   // where something is hidden
    std::vector<Hit> hits;

    // Of the present chunk.
    Vertex all[chunk_size];
    Vertex *in_lanes[chunk_size];
    Sampler samplers[chunk_size]; // of these
};

} // namespace vantor
