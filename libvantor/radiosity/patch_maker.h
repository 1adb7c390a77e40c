// Patch maker: divides the surfaces of a scene into patches, and joins the corners of their cells.
#pragma once

#include "libvantor/radiosity/patch_sizes.h"

namespace vantor {

/// What is needed while the patches are made.
class Patches::Maker {
  public:
    /// Makes them; throws Interrupted. The patches have their surfaces already.
    Maker(Patches &into, std::span<const Placement> placements, std::size_t budget, const Interrupt &stop);

  private:
    // A corner of the latest placement's lattice.
    struct Corner {
        Vec3 point;
        Vec3 normal;
        float cell_side;
    };

    void make(std::size_t placement);
    void add_panel(int columns, int rows, bool is_grouped);
    void add_patches(std::uint32_t placement, std::uint32_t cells);
    void add_groups(std::uint32_t placement, std::vector<std::uint32_t> triangles);
    void add_corner(std::size_t placement, std::uint32_t primitive, Point2f uv, float cell_side,
                    std::vector<Corner> &corners_of_placement);
    void add_triangle_corners(std::size_t placement, std::uint32_t triangle, int n,
                              std::vector<Corner> &corners_of_placement);
    void add_grid_corners(std::size_t placement, std::uint32_t primitive, int columns, int rows,
                          std::vector<Corner> &corners_of_placement);
    void merge(const std::vector<Corner> &lattice, std::size_t first_corner);
    void sum_areas();
    double area_of_cell(std::size_t placement, std::uint32_t primitive, const Panel &panel, std::uint32_t cell) const;

    Patches &patches;
    const Interrupt &interrupt;
    Sizes sizes;
    std::size_t group_count = 0;
    std::size_t grouped_count = 0; // triangles
};

} // namespace vantor
