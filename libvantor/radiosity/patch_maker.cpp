// Patch maker: divides the surfaces of a scene into patches, and joins the corners of their cells.
#include "libvantor/radiosity/patch_maker.h"

#include "libvantor/base/bits.h"
#include "libvantor/radiosity/key_sort.h"
#include "libvantor/radiosity/patch_points.h"
#include "libvantor/radiosity/patch_sizes.h"
#include "libvantor/radiosity/vertex_joining.h"

#include <numbers>

namespace vantor {

namespace {

// Of a point of the unit cube.
std::uint32_t morton_code_of(Vec3 unit) {
    const auto ten_bits = [](float part) { return static_cast<std::uint32_t>(std::clamp(part, 0.0f, 1.0f) * 1023); };
    return morton_code(ten_bits(unit.x), ten_bits(unit.y), ten_bits(unit.z));
}

PatchData without_patches(std::span<const Placement> placements) {
    PatchData data;
    for (const Placement &placement : placements) {
        data.surfaces.push_back({&placement.object->shape, to_float(placement.world_from_object)});
        data.reaches.push_back(static_cast<float>(outer_reach(placement.object->reach, placement.world_from_object)));
    }
    return data;
}

// What is needed while the patches are made.
class PatchMaker {
  public:
    PatchMaker(std::span<const Placement> placements, std::size_t budget, const Interrupt &stop, Progress &steps);

    PatchData make() &&;

  private:
    void divide(std::size_t placement);
    void add_panel(int columns, int rows, bool is_grouped);
    void add_patches(std::uint32_t placement, std::uint32_t cells);
    void add_groups(std::uint32_t placement, std::vector<std::uint32_t> triangles);
    void add_corner(std::size_t placement, std::uint32_t primitive, Point2f uv, float cell_side);
    void add_triangle_corners(std::size_t placement, std::uint32_t triangle, int n);
    void add_grid_corners(std::size_t placement, std::uint32_t primitive, int columns, int rows);
    void sum_areas();
    double area_of_cell(std::size_t placement, std::uint32_t primitive, const PatchData::Panel &panel,
                        std::uint32_t cell) const;

    PatchData data;
    const Interrupt &interrupt;
    Progress &progress;
    PatchSizes sizes;
    std::vector<LatticeCorner> lattice; // of the latest placement, whose vertices are not known yet
    std::size_t group_count = 0;
    std::size_t grouped_count = 0; // triangles
};

} // namespace

PatchMaker::PatchMaker(std::span<const Placement> placements, std::size_t budget, const Interrupt &stop,
                       Progress &steps)
    : data(without_patches(placements)), interrupt(stop), progress(steps),
      sizes(placements, data.surfaces, budget, stop) {}

PatchData PatchMaker::make() && {
    for (const std::size_t i : sizes.placements_with_patches())
        progress.expect(static_cast<long>(primitives_of(*data.surfaces[i].shape)));
    for (const std::size_t i : sizes.placements_with_patches()) {
        interrupt.check();
        divide(i);
    }
    if (group_count > 0) {
        const double group_size = static_cast<double>(grouped_count) / static_cast<double>(group_count);
        data.spreading_rounds = std::clamp(static_cast<int>(std::ceil(std::sqrt(group_size))), 1, 32);
    }
    sum_areas();
    return std::move(data);
}

void PatchMaker::divide(std::size_t placement) {
    const auto owner = static_cast<std::uint32_t>(placement);
    const Shape &shape = *data.surfaces[placement].shape;
    data.surfaces[placement].first_panel = static_cast<std::uint32_t>(data.panels.size());
    lattice.clear();

    if (std::holds_alternative<TriangleMesh>(shape)) {
        const PatchSizes::MeshDivision division = sizes.division_of(placement);
        std::vector<std::uint32_t> grouped;
        // Moved while it grew, the corners of millions of triangles could not be interrupted.
        lattice.reserve(3 * primitives_of(shape));
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
            interrupt.check();
            const int n = division(sizes.area_of_triangle(placement, p));
            add_panel(std::max(n, 1), std::max(n, 1), n == 0);
            if (n == 0)
                grouped.push_back(p);
            else
                add_patches(owner, static_cast<std::uint32_t>(n * n));
            add_triangle_corners(placement, p, std::max(n, 1));
        }
        add_groups(owner, std::move(grouped));
    } else if (std::holds_alternative<Quads>(shape)) {
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
            interrupt.check();
            const auto [columns, rows] = sizes.columns_and_rows(placement, p);
            add_panel(columns, rows, false);
            add_patches(owner, static_cast<std::uint32_t>(columns * rows));
            add_grid_corners(placement, p, columns, rows);
        }
    } else {
        const int rows = sizes.rows_of_sphere(placement);
        add_panel(2 * rows, rows, false);
        add_patches(owner, static_cast<std::uint32_t>(2 * rows * rows));
        add_grid_corners(placement, 0, 2 * rows, rows);
    }
    data.vertex_count = join_corners(lattice, data.vertex_count, data.corners, interrupt);
}

void PatchMaker::add_panel(int columns, int rows, bool is_grouped) {
    constexpr std::size_t stride = 1024;
    if (data.panels.size() % stride == 0)
        progress.done(stride);
    data.panels.push_back({static_cast<std::uint32_t>(data.patches.size()),
                           static_cast<std::uint32_t>(data.corners.size() + lattice.size()),
                           static_cast<std::uint16_t>(columns), static_cast<std::uint16_t>(rows), is_grouped});
}

// Of the latest panel, one for each of its cells.
void PatchMaker::add_patches(std::uint32_t placement, std::uint32_t cells) {
    const auto panel = static_cast<std::uint32_t>(data.panels.size() - 1);
    for (std::uint32_t cell = 0; cell < cells; ++cell) {
        data.patches.push_back({placement, static_cast<std::uint32_t>(data.facets.size()), 1, 0});
        data.facets.push_back({panel, cell, 0});
    }
}

// Small triangles, in groups of those that lie together and face about alike: along a Z-order curve for each way of
// facing, cut where the area is enough for a patch.
void PatchMaker::add_groups(std::uint32_t placement, std::vector<std::uint32_t> triangles) {
    if (triangles.empty())
        return;
    const PatchData::Surface &surface = data.surfaces[placement];
    const Affine &map = surface.world_from_object;
    const auto &mesh = std::get<TriangleMesh>(*surface.shape);
    Vec3 low = map.point(mesh.points[mesh.triangles[triangles[0]][0]]);
    Vec3 high = low;
    for (const std::uint32_t triangle : triangles) {
        interrupt.check();
        for (const std::uint32_t corner : mesh.triangles[triangle]) {
            const Vec3 p = map.point(mesh.points[corner]);
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
    }
    const Vec3 extent = high - low;
    const float scale = 1 / std::max(largest_coordinate(extent), std::numeric_limits<float>::min());

    // A key has 30 bits of the place, and above them 5 of the facing. The triangles come in their order.
    constexpr int place_bits = 30;
    std::vector<Keyed> members;
    members.reserve(triangles.size());
    for (const std::uint32_t triangle : triangles) {
        interrupt.check();
        const PatchPoint middle = point_in_world(*surface.shape, map, triangle, {1 / 3.0f, 1 / 3.0f});
        const std::uint64_t facing = facing_of(middle.normal);
        members.push_back({facing << place_bits | morton_code_of((middle.point - low) * scale), triangle});
    }
    sort_by_key(members, place_bits + 5, interrupt);

    double group_area = 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
        interrupt.check();
        if (i == 0 || members[i].key >> place_bits != members[i - 1].key >> place_bits ||
            group_area >= sizes.patch_side() * sizes.patch_side()) {
            data.patches.push_back({placement, static_cast<std::uint32_t>(data.facets.size()), 0, 0});
            group_area = 0;
            ++group_count;
        }
        group_area += sizes.area_of_triangle(placement, members[i].index);
        const std::uint32_t panel = surface.first_panel + members[i].index;
        data.panels[panel].first_patch = static_cast<std::uint32_t>(data.patches.size() - 1);
        data.facets.push_back({panel, 0, 0});
        ++data.patches.back().facet_count;
    }
    grouped_count += members.size();
}

void PatchMaker::add_corner(std::size_t placement, std::uint32_t primitive, Point2f uv, float cell_side) {
    const PatchData::Surface &surface = data.surfaces[placement];
    const PatchPoint place = point_in_world(*surface.shape, surface.world_from_object, primitive, uv);
    const Vec3 flat = direction_of(place.normal, {0, 0, 1});
    lattice.push_back({place.point, direction_of(place.shading_normal, flat), cell_side});
}

void PatchMaker::add_triangle_corners(std::size_t placement, std::uint32_t triangle, int n) {
    const auto cell_side =
        static_cast<float>(std::sqrt(sizes.area_of_triangle(placement, triangle)) / static_cast<double>(n));
    const auto count = static_cast<float>(n);
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n - j; ++i)
            add_corner(placement, triangle, {static_cast<float>(i) / count, static_cast<float>(j) / count}, cell_side);
}

void PatchMaker::add_grid_corners(std::size_t placement, std::uint32_t primitive, int columns, int rows) {
    const bool is_quad = std::holds_alternative<Quads>(*data.surfaces[placement].shape);
    const double cell_area =
        is_quad ? sizes.area_of_quad(placement, primitive) / columns / rows : sizes.patch_side() * sizes.patch_side();
    for (int j = 0; j <= rows; ++j)
        for (int i = 0; i <= columns; ++i)
            add_corner(
                placement, primitive,
                {static_cast<float>(i) / static_cast<float>(columns), static_cast<float>(j) / static_cast<float>(rows)},
                static_cast<float>(std::sqrt(cell_area)));
}

void PatchMaker::sum_areas() {
    for (PatchData::Patch &patch : data.patches) {
        interrupt.check();
        const PatchData::Surface &surface = data.surfaces[patch.placement];
        double sum = 0;
        for (std::uint32_t f = 0; f < patch.facet_count; ++f) {
            PatchData::Facet &facet = data.facets[patch.first_facet + f];
            sum +=
                area_of_cell(patch.placement, facet.panel - surface.first_panel, data.panels[facet.panel], facet.cell);
            facet.area_up_to = static_cast<float>(sum);
        }
        patch.area = static_cast<float>(sum);
    }
}

double PatchMaker::area_of_cell(std::size_t placement, std::uint32_t primitive, const PatchData::Panel &panel,
                                std::uint32_t cell) const {
    const PatchData::Surface &surface = data.surfaces[placement];
    const double columns = panel.columns;
    const double rows = panel.rows;
    if (std::holds_alternative<TriangleMesh>(*surface.shape))
        return sizes.area_of_triangle(placement, primitive) / (columns * rows);
    if (std::holds_alternative<Quads>(*surface.shape))
        return sizes.area_of_quad(placement, primitive) / (columns * rows);
    // Archimedes: the area of a zone goes with its height.
    const std::uint32_t row_index = cell / panel.columns;
    const double row = row_index;
    const double height = std::cos(std::numbers::pi * row / rows) - std::cos(std::numbers::pi * (row + 1) / rows);
    const double radius = sizes.radius_of_sphere(placement);
    return 2 * std::numbers::pi * radius * radius * height / columns;
}

Patches divide_into_patches(std::span<const Placement> placements, std::size_t budget, const Interrupt &interrupt,
                            Progress &progress) {
    return Patches(PatchMaker(placements, budget, interrupt, progress).make());
}

} // namespace vantor
