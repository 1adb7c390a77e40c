// Patches: the diffuse surfaces of a scene in small pieces, and the lattice on which light is interpolated.
#include "libvantor/radiosity/patches.h"

#include "libvantor/radiosity/patch_points.h"

namespace vantor {

Hit Patches::point_of(std::uint32_t index, Point2f numbers) const {
    const Patch &patch = data.patches[index];
    const Facet *facet = &data.facets[patch.first_facet];
    if (patch.facet_count > 1) {
        // A facet is chosen in proportion to its area. Given the choice, the rest of the number is uniform again.
        const float wanted = numbers.u * patch.area;
        const Facet *end = facet + patch.facet_count;
        const Facet *found =
            std::upper_bound(facet, end - 1, wanted, [](float area, const Facet &f) { return area < f.area_up_to; });
        const float before = found == facet ? 0.0f : (found - 1)->area_up_to;
        const float area = found->area_up_to - before;
        numbers.u = area > 0 ? std::clamp((wanted - before) / area, 0.0f, 0x1.fffffep-1f) : 0.5f;
        facet = found;
    }

    const Panel &panel = data.panels[facet->panel];
    const Surface &surface = data.surfaces[patch.placement];
    Point2f uv;
    if (std::holds_alternative<TriangleMesh>(*surface.shape)) {
        uv = point_in_triangle_cell(panel.columns, facet->cell, numbers);
    } else {
        const std::uint32_t column = facet->cell % panel.columns;
        const std::uint32_t row = facet->cell / panel.columns;
        uv = {(static_cast<float>(column) + numbers.u) / static_cast<float>(panel.columns),
              (static_cast<float>(row) + numbers.v) / static_cast<float>(panel.rows)};
        if (std::holds_alternative<Sphere>(*surface.shape)) {
            // Uniform in the height instead of the angle.
            const float low = std::cos(pi * static_cast<float>(row) / static_cast<float>(panel.rows));
            const float high = std::cos(pi * static_cast<float>(row + 1) / static_cast<float>(panel.rows));
            uv.v = std::acos(std::clamp(low + (high - low) * numbers.v, -1.0f, 1.0f)) * inverse_pi;
        }
    }

    const std::uint32_t primitive = facet->panel - surface.first_panel;
    const PatchPoint place = point_in_world(*surface.shape, surface.world_from_object, primitive, uv);
    Hit hit{};
    hit.exists = true;
    hit.point = place.point;
    hit.geometric_normal = direction_of(place.normal, {0, 0, 1});
    hit.shading_normal = direction_of(place.shading_normal, hit.geometric_normal);
    if (dot(hit.shading_normal, hit.geometric_normal) < 0)
        hit.shading_normal = -hit.shading_normal;
    hit.error = 64 * unit_roundoff * data.reaches[patch.placement];
    hit.placement = patch.placement;
    hit.primitive = primitive;
    hit.on_primitive = uv;
    return hit;
}

Patches::Footing Patches::footing_in_grid(const Panel &panel, Point2f uv) {
    const float x = std::clamp(uv.u, 0.0f, 1.0f) * static_cast<float>(panel.columns);
    const float y = std::clamp(uv.v, 0.0f, 1.0f) * static_cast<float>(panel.rows);
    const std::uint32_t i = std::min(static_cast<std::uint32_t>(x), panel.columns - 1u);
    const std::uint32_t j = std::min(static_cast<std::uint32_t>(y), panel.rows - 1u);
    const float u = x - static_cast<float>(i);
    const float v = y - static_cast<float>(j);
    const std::uint32_t corner = j * (panel.columns + 1u) + i;
    const std::uint32_t above = corner + panel.columns + 1u;
    return {j * panel.columns + i,
            {corner, corner + 1, above, above + 1},
            {(1 - u) * (1 - v), u * (1 - v), (1 - u) * v, u * v}};
}

Patches::Footing Patches::footing_in_triangle(const Panel &panel, Point2f uv) {
    const std::uint32_t n = panel.columns;
    const auto count = static_cast<float>(n);
    const float x = std::clamp(uv.u, 0.0f, 1.0f) * count;
    const float y = std::clamp(uv.v, 0.0f, 1.0f) * count;
    const std::uint32_t j = std::min(static_cast<std::uint32_t>(y), n - 1);
    const std::uint32_t i = std::min(static_cast<std::uint32_t>(x), n - 1 - j);
    const float u = std::min(x - static_cast<float>(i), 1.0f);
    const float v = std::min(y - static_cast<float>(j), 1.0f);
    const std::uint32_t right = corner_of_triangle(n, i + 1, j);
    const std::uint32_t above = corner_of_triangle(n, i, j + 1);
    const std::uint32_t cell = first_cell_of_row(n, j) + 2 * i;
    if (u + v > 1 && i + j + 1 < n)
        return {cell + 1, {corner_of_triangle(n, i + 1, j + 1), right, above, above}, {u + v - 1, 1 - v, 1 - u, 0}};
    const float rest = std::max(0.0f, 1 - u - v);
    const float scale = 1 / (rest + u + v);
    return {cell, {corner_of_triangle(n, i, j), right, above, above}, {rest * scale, u * scale, v * scale, 0}};
}

Patches::Footing Patches::footing(const Panel &panel, bool is_triangle, Point2f uv) {
    return is_triangle ? footing_in_triangle(panel, uv) : footing_in_grid(panel, uv);
}

bool Patches::footing_at(const Hit &hit, const Panel *&panel, Footing &result) const {
    const Surface &surface = data.surfaces[hit.placement];
    if (surface.first_panel == none)
        return false;
    panel = &data.panels[surface.first_panel + hit.primitive];
    const bool is_triangle = std::holds_alternative<TriangleMesh>(*surface.shape);
    const Point2f uv = is_triangle ? hit.on_primitive
                                   : parameters_at(*surface.shape, hit.primitive, hit.on_primitive,
                                                   surface.world_from_object.point_back(hit.point))
                                         .uv;
    // Under transforms that squeeze without measure they may be no numbers.
    if (!(std::isfinite(uv.u) && std::isfinite(uv.v)))
        return false;
    result = footing(*panel, is_triangle, uv);
    return true;
}

std::uint32_t Patches::patch_at(const Hit &hit) const {
    const Panel *panel;
    Footing found;
    return footing_at(hit, panel, found) ? panel->first_patch + found.cell : none;
}

bool Patches::interpolation_at(const Hit &hit, Interpolation &result) const {
    const Panel *panel;
    Footing found;
    if (!footing_at(hit, panel, found))
        return false;
    for (std::size_t i = 0; i < 4; ++i)
        result.vertices[i] = data.corners[panel->first_corner + found.corners[i]];
    result.weights = found.weights;
    return true;
}

} // namespace vantor
