// Vertex means: from the light of patches to that of the vertices between them.
#include "libvantor/radiosity/patch_points.h"
#include "libvantor/radiosity/patches.h"

namespace vantor {

namespace {

// The mean of what is added to each vertex, weighted by area.
class VertexMeans {
  public:
    explicit VertexMeans(std::size_t vertex_count) : sums(vertex_count), areas(vertex_count) {}

    void add(std::uint32_t vertex, const SideColors &value, float area) {
        sums[vertex].front += value.front * area;
        sums[vertex].back += value.back * area;
        areas[vertex] += area;
    }

    // Vertices to which nothing was added keep their values. Afterwards nothing has been added to any.
    void take(std::vector<SideColors> &values) {
        for (std::size_t v = 0; v < values.size(); ++v)
            if (areas[v] > 0)
                values[v] = {sums[v].front * (1 / areas[v]), sums[v].back * (1 / areas[v])};
        std::ranges::fill(sums, SideColors{});
        std::ranges::fill(areas, 0.0f);
    }

  private:
    std::vector<SideColors> sums;
    std::vector<float> areas;
};

} // namespace

// The vertices around a facet, and how many there are.
std::pair<std::array<std::uint32_t, 4>, std::size_t> Patches::vertices_of(const Patch &patch,
                                                                          const Facet &facet) const {
    const Panel &panel = data.panels[facet.panel];
    const std::uint32_t *lattice = &data.corners[panel.first_corner];
    if (panel.is_grouped)
        return {{lattice[0], lattice[1], lattice[2], lattice[2]}, 3};

    // From a point in the middle of its cell.
    const bool is_triangle = std::holds_alternative<TriangleMesh>(*data.surfaces[patch.placement].shape);
    const std::uint32_t column = facet.cell % panel.columns;
    const std::uint32_t row = facet.cell / panel.columns;
    const Point2f in_grid{(static_cast<float>(column) + 0.5f) / static_cast<float>(panel.columns),
                          (static_cast<float>(row) + 0.5f) / static_cast<float>(panel.rows)};
    const Point2f middle = is_triangle ? point_in_triangle_cell(panel.columns, facet.cell, {0.5f, 0.5f}) : in_grid;
    std::array<std::uint32_t, 4> result = footing(panel, is_triangle, middle).corners;
    for (std::uint32_t &corner : result)
        corner = lattice[corner];
    return {result, is_triangle ? 3 : 4};
}

std::vector<SideColors> Patches::at_vertices(std::span<const SideColors> of_patches, const Interrupt &interrupt) const {
    // A triangle that shares a patch with others; its vertices are numbered as they first appear, so that those of
    // neighbouring triangles lie together in memory. Every round visits all of these triangles.
    struct Triangle {
        std::array<std::uint32_t, 3> vertices;
        float area;
    };
    std::vector<Triangle> grouped;
    std::vector<std::uint32_t> numbers(data.vertex_count, none);
    std::vector<std::uint32_t> numbered;
    const auto number_of = [&](std::uint32_t vertex) {
        if (numbers[vertex] == none) {
            numbers[vertex] = static_cast<std::uint32_t>(numbered.size());
            numbered.push_back(vertex);
        }
        return numbers[vertex];
    };

    VertexMeans of_all(data.vertex_count);
    for (std::size_t p = 0; p < data.patches.size(); ++p) {
        interrupt.check();
        const Patch &patch = data.patches[p];
        float before = 0;
        for (std::uint32_t f = 0; f < patch.facet_count; ++f) {
            const Facet &facet = data.facets[patch.first_facet + f];
            const float area = facet.area_up_to - before;
            before = facet.area_up_to;
            const auto [around, count] = vertices_of(patch, facet);
            for (std::size_t i = 0; i < count; ++i)
                of_all.add(around[i], of_patches[p], area);
            if (data.panels[facet.panel].is_grouped)
                grouped.push_back({{number_of(around[0]), number_of(around[1]), number_of(around[2])}, area});
        }
    }
    std::vector<SideColors> result(data.vertex_count);
    of_all.take(result);

    std::vector<SideColors> spread;
    spread.reserve(numbered.size());
    for (const std::uint32_t vertex : numbered)
        spread.push_back(result[vertex]);
    VertexMeans of_grouped(numbered.size());
    for (int round = 0; round < data.spreading_rounds; ++round) {
        for (std::size_t t = 0; t < grouped.size(); ++t) {
            if (t % 4096 == 0)
                interrupt.check();
            const auto &[around, area] = grouped[t];
            const SideColors &a = spread[around[0]];
            const SideColors &b = spread[around[1]];
            const SideColors &c = spread[around[2]];
            const SideColors mean{(a.front + b.front + c.front) * (1 / 3.0f), (a.back + b.back + c.back) * (1 / 3.0f)};
            for (const std::uint32_t vertex : around)
                of_grouped.add(vertex, mean, area);
        }
        of_grouped.take(spread);
    }
    for (std::size_t i = 0; i < numbered.size(); ++i)
        result[numbered[i]] = spread[i];
    return result;
}

} // namespace vantor
