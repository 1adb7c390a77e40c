// Patch sizes: which surfaces have patches, and into how many each of their primitives is divided.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/radiosity/patch_data.h"

namespace vantor {

/// Chosen so that the patches have about equal areas and are about as many as the budget says. A placement is named by
/// its index.
class PatchSizes {
  public:
    /// The surfaces are those of the placements and have to outlive it. Throws Interrupted, and so do all that take
    /// long.
    PatchSizes(std::span<const Placement> placements, std::span<const PatchData::Surface> of_placements,
               std::size_t budget, const Interrupt &stop);

    /// The placements that have patches, in their order.
    const std::vector<std::size_t> &placements_with_patches() const { return kept; }

    /// The side of a patch, in the world.
    double patch_side() const { return side; }

    /// How the triangles of a mesh are divided: by a multiple of the unit and a power of two if there is room for it,
    /// so that the corners of large cells on an edge are among those of its other side's small ones.
    struct MeshDivision {
        double side;
        int unit;

        /// 0 for a triangle that shares a patch with others.
        int operator()(double area) const;
    };
    MeshDivision division_of(std::size_t placement) const;

    /// Of a parallelogram.
    std::array<int, 2> columns_and_rows(std::size_t placement, std::uint32_t quad) const;

    /// Of a sphere, which has twice as many columns.
    int rows_of_sphere(std::size_t placement) const;

    /// Areas in the world.
    double area_of_triangle(std::size_t placement, std::uint32_t triangle) const {
        return triangle_areas[placement][triangle];
    }
    double area_of_quad(std::size_t placement, std::uint32_t quad) const;

    /// Of an ellipsoid roughly: as a sphere of the same volume.
    double radius_of_sphere(std::size_t placement) const;

  private:
    double area_of_placement(std::size_t i);
    double count_of(std::size_t i) const;
    void choose_placements(std::size_t budget);
    void choose_side(std::size_t budget);

    std::span<const Placement> placed;
    std::span<const PatchData::Surface> surfaces;
    const Interrupt &interrupt;
    std::vector<std::size_t> kept;
    std::vector<std::vector<double>> triangle_areas; // of the placements; of meshes that have patches
    double total_area = 0;
    double side = 0;
};

} // namespace vantor
