// Patch data: what patches consist of.
#pragma once

#include "libvantor/description/registry.h"

namespace vantor {

/// Pieces of surfaces, as the patch maker leaves them; see Patches.
struct PatchData {
    static constexpr std::uint32_t none = ~0u;

    struct Patch {
        std::uint32_t placement;
        std::uint32_t first_facet;
        std::uint32_t facet_count;
        float area;
    };
    /// A cell of a panel: what patches consist of.
    struct Facet {
        std::uint32_t panel;
        std::uint32_t cell;
        float area_up_to; ///< of the patch's facets, this one included
    };
    /// A primitive, divided into cells.
    struct Panel {
        std::uint32_t first_patch; ///< of its first cell; the cells' patches follow each other
        std::uint32_t first_corner;
        std::uint16_t columns; ///< a triangle's n in both
        std::uint16_t rows;
        bool is_grouped; ///< shares a patch with others
    };
    struct Surface {
        const Shape *shape;
        Affine world_from_object;
        std::uint32_t first_panel = none;
    };

    std::vector<Patch> patches;
    std::vector<Facet> facets;
    std::vector<Panel> panels;
    std::vector<Surface> surfaces;      ///< of the placements
    std::vector<float> reaches;         ///< of each: the largest coordinate of its points, in the world
    std::vector<std::uint32_t> corners; ///< of the panels' lattices: vertices
    std::size_t vertex_count = 0;
    int spreading_rounds = 0; ///< how far the means of vertices are spread where patches are groups
};

} // namespace vantor
