// Patches: the diffuse surfaces of a scene in small pieces, and the lattice on which light is interpolated.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/embree/hit.h"
#include "libvantor/radiosity/patch_data.h"

#include <span>

namespace vantor {

/// A colour for each side of a surface.
struct SideColors {
    Color front;
    Color back;
};

/// Pieces of about equal area, each of one placement. Constant once made; the placements' objects have to outlive it.
///
/// A primitive is a panel: a parallelogram or sphere in columns and rows, a triangle in n^2 equal triangles. Triangles
/// that are smaller than a patch have one cell and share a patch with their neighbours that face about alike. The
/// corners of the cells are the lattice. Where the points of neighbouring panels of one placement agree, and their
/// normals nearly do, they are one vertex, so that what is interpolated between the vertices has no seams.
///
/// Only opaque, purely diffuse placements of triangles, parallelograms and spheres have patches; and if the budget is
/// too small for all placements to have one for each primitive or direction, the least of them go without.
class Patches {
  public:
    static constexpr std::uint32_t none = PatchData::none;

    explicit Patches(PatchData parts) : data(std::move(parts)) {}

    std::size_t size() const { return data.patches.size(); }
    float area(std::uint32_t patch) const { return data.patches[patch].area; }
    std::uint32_t placement(std::uint32_t patch) const { return data.patches[patch].placement; }

    /// A point of a patch: two numbers make a uniform one. As if a ray had met it.
    Hit point_of(std::uint32_t patch, Point2f numbers) const;

    /// The patch that was hit; `none` if the surface has no patches.
    std::uint32_t patch_at(const Hit &hit) const;

    /// What to interpolate there: the vertices, and their weights, which are 0 or more and add up to 1.
    struct Interpolation {
        std::array<std::uint32_t, 4> vertices;
        std::array<float, 4> weights;
    };

    /// False if the surface has no patches.
    bool interpolation_at(const Hit &hit, Interpolation &result) const;

    /// From a value of each patch to one of each vertex: the mean of the patches around it, by area. Where patches are
    /// groups of triangles, the means are spread as far as the groups are wide. Throws Interrupted.
    std::vector<SideColors> at_vertices(std::span<const SideColors> of_patches, const Interrupt &interrupt) const;

  private:
    using Patch = PatchData::Patch;
    using Facet = PatchData::Facet;
    using Panel = PatchData::Panel;
    using Surface = PatchData::Surface;

    // Where a point lies in a panel: its cell, and the cell's corners in the panel's lattice.
    struct Footing {
        std::uint32_t cell;
        std::array<std::uint32_t, 4> corners;
        std::array<float, 4> weights;
    };

    static Footing footing_in_grid(const Panel &panel, Point2f uv);
    static Footing footing_in_triangle(const Panel &panel, Point2f uv);
    static Footing footing(const Panel &panel, bool is_triangle, Point2f uv);
    std::pair<std::array<std::uint32_t, 4>, std::size_t> vertices_of(const Patch &patch, const Facet &facet) const;
    bool footing_at(const Hit &hit, const Panel *&panel, Footing &result) const;

    PatchData data;
};

} // namespace vantor
