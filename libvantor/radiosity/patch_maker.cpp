// Patch maker: divides the surfaces of a scene into patches, and joins the corners of their cells.
#include "libvantor/radiosity/patch_maker.h"

#include "libvantor/base/bits.h"
#include "libvantor/radiosity/patch_points.h"

#include <bit>
#include <numbers>
#include <numeric>

namespace vantor {

namespace {

// Flat pieces whose normals differ by more than about 37 degrees have an edge between them.
constexpr float least_cosine = 0.8f;

// Of a point of the unit cube.
std::uint32_t morton_code_of(Vec3 unit) {
    const auto ten_bits = [](float part) { return static_cast<std::uint32_t>(std::clamp(part, 0.0f, 1.0f) * 1023); };
    return morton_code(ten_bits(unit.x), ten_bits(unit.y), ten_bits(unit.z));
}

struct Keyed {
    std::uint64_t key;
    std::uint32_t index;
};

// By keys of that many bits; the order of equal keys stays. Many elements are sorted from the lowest digit to the
// highest, in a time that grows with their number only: Knuth, "The Art of Computer Programming", 5.2.5.
void sort_by_key(std::vector<Keyed> &elements, int key_bits, const Interrupt &interrupt) {
    constexpr int digit_bits = 11;
    constexpr std::size_t digits = std::size_t{1} << digit_bits;
    if (elements.size() < digits) {
        std::ranges::stable_sort(elements, {}, &Keyed::key);
        return;
    }
    std::vector<Keyed> sorted(elements.size());
    for (int shift = 0; shift < key_bits; shift += digit_bits) {
        const auto digit_of = [&](const Keyed &e) { return e.key >> shift & (digits - 1); };
        std::vector<std::size_t> ends(digits);
        for (const Keyed &element : elements)
            ++ends[digit_of(element)];
        std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), std::size_t{0});
        for (std::size_t i = 0; i < elements.size(); ++i) {
            if (i % 65536 == 0)
                interrupt.check();
            sorted[ends[digit_of(elements[i])]++] = elements[i];
        }
        elements.swap(sorted);
    }
}

// Ascends with the number, which is finite; 0 and -0 have the same key.
std::uint32_t ascending_key_of(float number) {
    const auto bits = std::bit_cast<std::uint32_t>(number + 0.0f);
    return bits >> 31 ? ~bits : bits | 0x80000000u;
}

} // namespace

Patches::Maker::Maker(Patches &into, std::span<const Placement> placements, std::size_t budget, const Interrupt &stop)
    : patches(into), interrupt(stop), sizes(placements, into.surfaces, budget, stop) {
    for (const std::size_t i : sizes.placements_with_patches()) {
        interrupt.check();
        make(i);
    }
    patches.spreading_rounds =
        group_count > 0 ? std::clamp(static_cast<int>(std::ceil(std::sqrt(static_cast<double>(grouped_count) /
                                                                          static_cast<double>(group_count)))),
                                     1, 32)
                        : 0;
    sum_areas();
}

void Patches::Maker::make(std::size_t placement) {
    const auto owner = static_cast<std::uint32_t>(placement);
    const Shape &shape = *patches.surfaces[placement].shape;
    patches.surfaces[placement].first_panel = static_cast<std::uint32_t>(patches.panels.size());
    const std::size_t first_corner = patches.corners.size();
    std::vector<Corner> lattice;

    if (std::holds_alternative<TriangleMesh>(shape)) {
        const Sizes::MeshDivision division = sizes.division_of(placement);
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
            add_triangle_corners(placement, p, std::max(n, 1), lattice);
        }
        add_groups(owner, std::move(grouped));
    } else if (std::holds_alternative<Quads>(shape)) {
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
            interrupt.check();
            const auto [columns, rows] = sizes.columns_and_rows(placement, p);
            add_panel(columns, rows, false);
            add_patches(owner, static_cast<std::uint32_t>(columns * rows));
            add_grid_corners(placement, p, columns, rows, lattice);
        }
    } else {
        const int rows = sizes.rows_of_sphere(placement);
        add_panel(2 * rows, rows, false);
        add_patches(owner, static_cast<std::uint32_t>(2 * rows * rows));
        add_grid_corners(placement, 0, 2 * rows, rows, lattice);
    }
    merge(lattice, first_corner);
}

void Patches::Maker::add_panel(int columns, int rows, bool is_grouped) {
    patches.panels.push_back({static_cast<std::uint32_t>(patches.all.size()),
                              static_cast<std::uint32_t>(patches.corners.size()), static_cast<std::uint16_t>(columns),
                              static_cast<std::uint16_t>(rows), is_grouped});
}

// Of the latest panel, one for each of its cells.
void Patches::Maker::add_patches(std::uint32_t placement, std::uint32_t cells) {
    const auto panel = static_cast<std::uint32_t>(patches.panels.size() - 1);
    for (std::uint32_t cell = 0; cell < cells; ++cell) {
        patches.all.push_back({placement, static_cast<std::uint32_t>(patches.facets.size()), 1, 0});
        patches.facets.push_back({panel, cell, 0});
    }
}

// Small triangles, in groups of those that lie together and face about alike: along a Z-order curve for each way of
// facing, cut where the area is enough for a patch.
void Patches::Maker::add_groups(std::uint32_t placement, std::vector<std::uint32_t> triangles) {
    if (triangles.empty())
        return;
    const Surface &surface = patches.surfaces[placement];
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
            patches.all.push_back({placement, static_cast<std::uint32_t>(patches.facets.size()), 0, 0});
            group_area = 0;
            ++group_count;
        }
        group_area += sizes.area_of_triangle(placement, members[i].index);
        const std::uint32_t panel = surface.first_panel + members[i].index;
        patches.panels[panel].first_patch = static_cast<std::uint32_t>(patches.all.size() - 1);
        patches.facets.push_back({panel, 0, 0});
        ++patches.all.back().facet_count;
    }
    grouped_count += members.size();
}

void Patches::Maker::add_corner(std::size_t placement, std::uint32_t primitive, Point2f uv, float cell_side,
                                std::vector<Corner> &corners_of_placement) {
    const Surface &surface = patches.surfaces[placement];
    const PatchPoint place = point_in_world(*surface.shape, surface.world_from_object, primitive, uv);
    const Vec3 flat = direction_of(place.normal, {0, 0, 1});
    corners_of_placement.push_back({place.point, direction_of(place.shading_normal, flat), cell_side});
    patches.corners.push_back(0);
}

void Patches::Maker::add_triangle_corners(std::size_t placement, std::uint32_t triangle, int n,
                                          std::vector<Corner> &corners_of_placement) {
    const auto cell_side =
        static_cast<float>(std::sqrt(sizes.area_of_triangle(placement, triangle)) / static_cast<double>(n));
    const auto count = static_cast<float>(n);
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n - j; ++i)
            add_corner(placement, triangle, {static_cast<float>(i) / count, static_cast<float>(j) / count}, cell_side,
                       corners_of_placement);
}

void Patches::Maker::add_grid_corners(std::size_t placement, std::uint32_t primitive, int columns, int rows,
                                      std::vector<Corner> &corners_of_placement) {
    const bool is_quad = std::holds_alternative<Quads>(*patches.surfaces[placement].shape);
    const double cell_area =
        is_quad ? sizes.area_of_quad(placement, primitive) / columns / rows : sizes.patch_side() * sizes.patch_side();
    for (int j = 0; j <= rows; ++j)
        for (int i = 0; i <= columns; ++i)
            add_corner(
                placement, primitive,
                {static_cast<float>(i) / static_cast<float>(columns), static_cast<float>(j) / static_cast<float>(rows)},
                static_cast<float>(std::sqrt(cell_area)), corners_of_placement);
}

// Makes one vertex of the corners that agree. They are looked at in their order along a direction in which no scene
// is likely to have its points side by side.
void Patches::Maker::merge(const std::vector<Corner> &lattice, std::size_t first_corner) {
    const Vec3 direction = normalized({0.3713f, 0.8147f, 0.4451f});
    std::vector<Keyed> order;
    order.reserve(lattice.size());
    std::vector<float> depths(lattice.size());
    for (std::uint32_t i = 0; i < lattice.size(); ++i) {
        interrupt.check();
        depths[i] = dot(lattice[i].point, direction);
        order.push_back({ascending_key_of(depths[i]), i});
    }
    sort_by_key(order, 32, interrupt);

    const auto tolerance = [&](const Corner &c) {
        return std::max(0.02f * c.cell_side, 1e-6f * largest_coordinate(c.point));
    };
    // The vertices so far, by the corner that stands for each.
    struct Vertex {
        Corner corner;
        float depth;
    };
    std::vector<Vertex> merged;
    for (const Keyed &keyed : order) {
        interrupt.check();
        const std::uint32_t i = keyed.index;
        const Corner &corner = lattice[i];
        const float reach = tolerance(corner);
        std::size_t v = merged.size();
        bool is_found = false;
        while (v > 0 && !is_found && depths[i] - merged[v - 1].depth <= reach) {
            const Corner &other = merged[--v].corner;
            is_found = length(corner.point - other.point) <= std::min(reach, tolerance(other)) &&
                       dot(corner.normal, other.normal) >= least_cosine;
        }
        if (!is_found) {
            v = merged.size();
            merged.push_back({corner, depths[i]});
        }
        patches.corners[first_corner + i] = static_cast<std::uint32_t>(patches.vertices + v);
    }
    patches.vertices += merged.size();
}

void Patches::Maker::sum_areas() {
    for (Patch &patch : patches.all) {
        interrupt.check();
        const Surface &surface = patches.surfaces[patch.placement];
        double sum = 0;
        for (std::uint32_t f = 0; f < patch.facet_count; ++f) {
            Facet &facet = patches.facets[patch.first_facet + f];
            sum += area_of_cell(patch.placement, facet.panel - surface.first_panel, patches.panels[facet.panel],
                                facet.cell);
            facet.area_up_to = static_cast<float>(sum);
        }
        patch.area = static_cast<float>(sum);
    }
}

double Patches::Maker::area_of_cell(std::size_t placement, std::uint32_t primitive, const Panel &panel,
                                    std::uint32_t cell) const {
    const Surface &surface = patches.surfaces[placement];
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

} // namespace vantor
