// Patches: the diffuse surfaces of a scene in small pieces, and the lattice on which light is interpolated.
#include "libvantor/passes/patches.h"

#include "libvantor/base/warp.h"

#include <numbers>
#include <numeric>

namespace vantor {

namespace {

constexpr double most_columns = 4096;

// Flat pieces whose normals differ by more than about 37 degrees have an edge between them.
constexpr float least_cosine = 0.8f;

// A point of a shape, in its space. The normals have any length.
struct PatchPoint {
    Vec3 point;
    Vec3 normal;
    Vec3 shading_normal;
};

PatchPoint place_on(const TriangleMesh &mesh, std::uint32_t triangle, Pair uv) {
    const TriangleMesh::Triangle &t = mesh.triangles[triangle];
    const auto at = [&](const std::vector<Vec3> &values) {
        return values[t[0]] * (1 - uv.u - uv.v) + values[t[1]] * uv.u + values[t[2]] * uv.v;
    };
    const Vec3 normal = cross(mesh.points[t[1]] - mesh.points[t[0]], mesh.points[t[2]] - mesh.points[t[0]]);
    return {at(mesh.points), normal, mesh.normals.empty() ? normal : at(mesh.normals)};
}

PatchPoint place_on(const Quads &quads, std::uint32_t quad, Pair uv) {
    const Quads::Corners &c = quads.corners[quad];
    const Vec3 edge_u = c[1] - c[0];
    const Vec3 edge_v = c[3] - c[0];
    const Vec3 normal = cross(edge_u, edge_v);
    return {c[0] + edge_u * uv.u + edge_v * uv.v, normal, normal};
}

// As parameters_at() counts u and v.
PatchPoint place_on(const Sphere &sphere, std::uint32_t, Pair uv) {
    const float polar = pi * (1 - uv.v);
    const float around = 2 * pi * uv.u;
    const float radius = std::sin(polar);
    const Vec3 normal{radius * std::sin(around), std::cos(polar), radius * std::cos(around)};
    return {sphere.center + normal * sphere.radius, normal, normal};
}

template <class Other> PatchPoint place_on(const Other &, std::uint32_t, Pair) { return {}; }

PatchPoint point_in_world(const Shape &shape, const Affine &map, std::uint32_t primitive, Pair uv) {
    const PatchPoint local = std::visit([&](const auto &kind) { return place_on(kind, primitive, uv); }, shape);
    return {map.point(local.point), map.normals(local.normal), map.normals(local.shading_normal)};
}

// Any direction for a vector without one.
Vec3 unit_length(Vec3 v, Vec3 otherwise) {
    const float square = dot(v, v);
    return square >= std::numeric_limits<float>::min() && std::isfinite(square) ? v * (1 / std::sqrt(square))
                                                                                : otherwise;
}

double area_of(Vec3 a, Vec3 b, Vec3 c) {
    const Vec3 normal = cross(b - a, c - a);
    return 0.5 * std::sqrt(static_cast<double>(dot(normal, normal)));
}

bool has_patches(const Placement &placement) {
    const Shape &shape = placement.object->shape;
    const bool is_known = std::holds_alternative<TriangleMesh>(shape) || std::holds_alternative<Quads>(shape) ||
                          std::holds_alternative<Sphere>(shape);
    const bool is_whole = !placement.places && placement.object->trimmers.empty();
    return is_known && is_whole && std::holds_alternative<Diffuse>(placement.material->scattering) &&
           !placement.material->is_see_through();
}

int rounded_columns(double length, double side, double most) {
    return static_cast<int>(std::clamp(std::round(length / side), 1.0, std::clamp(most, 1.0, most_columns)));
}

// A triangle in n^2 cells. Their corners (i, j) lie at i / n towards the second corner and j / n towards the third, row
// after row; so do the cells, those that stand like the triangle and those that do not in turn.
std::uint32_t corner_of_triangle(std::uint32_t n, std::uint32_t i, std::uint32_t j) {
    return j * (n + 1) - j * (j - 1) / 2 + i;
}
std::uint32_t first_cell_of_row(std::uint32_t n, std::uint32_t j) { return 2 * n * j - j * j; }

Pair point_in_triangle_cell(std::uint32_t n, std::uint32_t cell, Pair numbers) {
    // The rows from j on have (n - j)^2 cells.
    const auto cells_left = static_cast<double>(n * n - cell);
    const std::uint32_t j = n - static_cast<std::uint32_t>(std::ceil(std::sqrt(cells_left)));
    const std::uint32_t in_row = cell - first_cell_of_row(n, j);
    const auto i = static_cast<float>(in_row / 2);
    const Pair within = warp::triangle(numbers);
    const float step = 1 / static_cast<float>(n);
    if (in_row % 2 == 0)
        return {(i + within.u) * step, (static_cast<float>(j) + within.v) * step};
    return {(i + 1 - within.u) * step, (static_cast<float>(j) + 1 - within.v) * step};
}

// Spreads three times ten bits to every third place.
std::uint32_t morton(Vec3 unit) {
    const auto spread = [](float part) {
        auto x = static_cast<std::uint32_t>(std::clamp(part, 0.0f, 1.0f) * 1023);
        x = (x | (x << 16)) & 0x030000ffu;
        x = (x | (x << 8)) & 0x0300f00fu;
        x = (x | (x << 4)) & 0x030c30c3u;
        return (x | (x << 2)) & 0x09249249u;
    };
    return spread(unit.x) | (spread(unit.y) << 1) | (spread(unit.z) << 2);
}

// Which of 24 parts of the sphere of directions: of a cube's faces the quarters. Normals of one part differ by at most
// 55 degrees.
constexpr std::size_t facing_count = 24;
std::uint32_t facing_of(Vec3 n) {
    const Vec3 size{std::fabs(n.x), std::fabs(n.y), std::fabs(n.z)};
    const auto quarters = [](float along, float a, float b) {
        return (along < 0 ? 4u : 0u) + (a < 0 ? 2u : 0u) + (b < 0 ? 1u : 0u);
    };
    if (size.x >= size.y && size.x >= size.z)
        return quarters(n.x, n.y, n.z);
    if (size.y >= size.z)
        return 8 + quarters(n.y, n.z, n.x);
    return 16 + quarters(n.z, n.x, n.y);
}

} // namespace

// What is needed while the patches are made.
class Patches::Maker {
  public:
    Maker(Patches &into, std::span<const Placement> placements, std::size_t budget)
        : patches(into), placed(placements) {
        for (const Placement &placement : placements)
            patches.surfaces.push_back({&placement.object->shape, to_float(placement.world_from_object), none});
        choose_placements(budget);
        choose_side(budget);
        for (const std::size_t i : kept)
            make(i);
        patches.spreading_rounds =
            group_count > 0
                ? std::clamp(static_cast<int>(std::ceil(std::sqrt(static_cast<double>(grouped_count) / group_count))),
                             1, 32)
                : 0;
        sum_areas();
    }

  private:
    // How the triangles of a mesh are divided: by a multiple of the unit and a power of two if there is room for it,
    // so that the corners of large cells on an edge are among those of its other side's small ones.
    struct MeshDivision {
        double side;
        int unit;

        // 0 for a triangle that shares a patch with others.
        int operator()(double area) const {
            const double exact = std::sqrt(area) / side;
            if (exact < 0.75)
                return 0;
            const double doublings = std::round(std::log2(exact / unit));
            const double n = doublings >= 0 ? unit * std::exp2(doublings)
                                            : std::min<double>(unit, std::exp2(std::round(std::log2(exact))));
            return static_cast<int>(std::clamp(n, 1.0, most_columns));
        }
    };

    // The least number of patches that are worth having.
    static std::size_t least_of(const Shape &shape) {
        if (const auto *mesh = std::get_if<TriangleMesh>(&shape))
            return std::min(mesh->triangles.size(), facing_count);
        return std::holds_alternative<Sphere>(shape) ? 8 : primitives_of(shape);
    }

    double area_of_triangle(std::size_t placement, std::uint32_t triangle) const {
        const auto [shape, map, first_panel] = patches.surfaces[placement];
        const auto &mesh = std::get<TriangleMesh>(*shape);
        const TriangleMesh::Triangle &t = mesh.triangles[triangle];
        return area_of(map.point(mesh.points[t[0]]), map.point(mesh.points[t[1]]), map.point(mesh.points[t[2]]));
    }

    double area_of_quad(std::size_t placement, std::uint32_t quad) const {
        const auto [shape, map, first_panel] = patches.surfaces[placement];
        const Quads::Corners &c = std::get<Quads>(*shape).corners[quad];
        return 2 * area_of(map.point(c[0]), map.point(c[1]), map.point(c[3]));
    }

    // Of an ellipsoid roughly: as a sphere of the same volume.
    double radius_of_sphere(std::size_t placement) const {
        const auto [shape, map, first_panel] = patches.surfaces[placement];
        return static_cast<double>(std::get<Sphere>(*shape).radius) * std::cbrt(std::fabs(map.determinant));
    }

    double area_of_placement(std::size_t i) const {
        const Shape &shape = *patches.surfaces[i].shape;
        if (std::holds_alternative<Sphere>(shape))
            return 4 * static_cast<double>(pi) * radius_of_sphere(i) * radius_of_sphere(i);
        const bool is_mesh = std::holds_alternative<TriangleMesh>(shape);
        double sum = 0;
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p)
            sum += is_mesh ? area_of_triangle(i, p) : area_of_quad(i, p);
        return sum;
    }

    // The placements that have most area for each of their patches, as many as there may be.
    void choose_placements(std::size_t budget) {
        std::vector<double> areas(placed.size());
        for (std::size_t i = 0; i < placed.size(); ++i) {
            if (!has_patches(placed[i]))
                continue;
            areas[i] = area_of_placement(i);
            if (areas[i] > 0 && std::isfinite(areas[i]))
                kept.push_back(i);
        }
        const auto share = [&](std::size_t i) {
            return areas[i] / static_cast<double>(least_of(placed[i].object->shape));
        };
        std::ranges::stable_sort(kept, [&](std::size_t a, std::size_t b) { return share(a) > share(b); });

        const std::size_t most = std::max<std::size_t>(budget, 256);
        std::size_t count = 0;
        std::size_t end = 0;
        while (end < kept.size() && (count += least_of(placed[kept[end]].object->shape)) <= most)
            total_area += areas[kept[end++]];
        kept.resize(end);
        std::ranges::sort(kept);
    }

    // How long the side of a patch is, so that there are about as many as wanted.
    void choose_side(std::size_t budget) {
        std::size_t least = 0;
        for (const std::size_t i : kept)
            least += least_of(placed[i].object->shape);
        const auto wanted = static_cast<double>(std::max(budget, 2 * least));
        side = std::sqrt(total_area / wanted);
        for (int round = 0; round < 8; ++round) {
            double count = 0;
            for (const std::size_t i : kept)
                count += count_of(i);
            if (count <= 1.05 * wanted)
                break;
            side *= std::sqrt(count / wanted);
        }
    }

    double count_of(std::size_t i) const {
        const Shape &shape = *patches.surfaces[i].shape;
        if (std::holds_alternative<Sphere>(shape))
            return 2.0 * rows_of_sphere(i) * rows_of_sphere(i);
        double count = 0;
        if (std::holds_alternative<Quads>(shape)) {
            for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
                const auto [columns, rows] = columns_and_rows(i, p);
                count += static_cast<double>(columns) * rows;
            }
            return count;
        }
        const MeshDivision division = division_of(i);
        double grouped = 0;
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
            const double area = area_of_triangle(i, p);
            const int n = division(area);
            count += static_cast<double>(n) * n;
            grouped += n == 0 ? area : 0.0;
        }
        return count + grouped / (side * side);
    }

    std::array<int, 2> columns_and_rows(std::size_t placement, std::uint32_t quad) const {
        const auto [shape, map, first_panel] = patches.surfaces[placement];
        const Quads::Corners &c = std::get<Quads>(*shape).corners[quad];
        // A strip that is thinner than a patch has no more of them than goes with its area.
        const double most = std::ceil(4 * area_of_quad(placement, quad) / (side * side));
        const double u = length(map.linear(c[1] - c[0]));
        const double v = length(map.linear(c[3] - c[0]));
        const int rows = rounded_columns(v, side, most);
        return {rounded_columns(u, side, most / rows), rows};
    }

    int rows_of_sphere(std::size_t placement) const {
        return std::max(2, rounded_columns(static_cast<double>(pi) * radius_of_sphere(placement), side, 1024));
    }

    MeshDivision division_of(std::size_t placement) const {
        double largest = 0;
        const std::size_t count = primitives_of(*patches.surfaces[placement].shape);
        for (std::uint32_t p = 0; p < count; ++p)
            largest = std::max(largest, area_of_triangle(placement, p));
        const double exact = std::sqrt(largest) / side;
        const double halvings = std::max(0.0, std::floor(std::log2(std::max(exact, 1.0))) - 2);
        return {side, std::max(1, static_cast<int>(std::round(exact / std::exp2(halvings))))};
    }

    void make(std::size_t placement) {
        const auto owner = static_cast<std::uint32_t>(placement);
        const Shape &shape = *patches.surfaces[placement].shape;
        patches.surfaces[placement].first_panel = static_cast<std::uint32_t>(patches.panels.size());
        const std::size_t first_corner = patches.corners.size();
        std::vector<Corner> corners;

        if (std::holds_alternative<TriangleMesh>(shape)) {
            const MeshDivision division = division_of(placement);
            std::vector<std::uint32_t> grouped;
            for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
                const int n = division(area_of_triangle(placement, p));
                add_panel(std::max(n, 1), std::max(n, 1), n == 0);
                if (n == 0)
                    grouped.push_back(p);
                else
                    add_patches(owner, static_cast<std::uint32_t>(n * n));
                add_triangle_corners(placement, p, std::max(n, 1), corners);
            }
            add_groups(owner, std::move(grouped));
        } else if (std::holds_alternative<Quads>(shape)) {
            for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
                const auto [columns, rows] = columns_and_rows(placement, p);
                add_panel(columns, rows, false);
                add_patches(owner, static_cast<std::uint32_t>(columns * rows));
                add_grid_corners(placement, p, columns, rows, corners);
            }
        } else {
            const int rows = rows_of_sphere(placement);
            add_panel(2 * rows, rows, false);
            add_patches(owner, static_cast<std::uint32_t>(2 * rows * rows));
            add_grid_corners(placement, 0, 2 * rows, rows, corners);
        }
        merge(corners, first_corner);
    }

    void add_panel(int columns, int rows, bool is_grouped) {
        patches.panels.push_back({static_cast<std::uint32_t>(patches.all.size()),
                                  static_cast<std::uint32_t>(patches.corners.size()),
                                  static_cast<std::uint16_t>(columns), static_cast<std::uint16_t>(rows), is_grouped});
    }

    // Of the latest panel, one for each of its cells.
    void add_patches(std::uint32_t placement, std::uint32_t cells) {
        const auto panel = static_cast<std::uint32_t>(patches.panels.size() - 1);
        for (std::uint32_t cell = 0; cell < cells; ++cell) {
            patches.all.push_back({placement, static_cast<std::uint32_t>(patches.facets.size()), 1, 0});
            patches.facets.push_back({panel, cell, 0});
        }
    }

    // Small triangles, in groups of those that lie together and face about alike: along a Z-order curve for each way of
    // facing, cut where the area is enough for a patch.
    void add_groups(std::uint32_t placement, std::vector<std::uint32_t> triangles) {
        if (triangles.empty())
            return;
        const Surface &surface = patches.surfaces[placement];
        const Affine &map = surface.world_from_object;
        const auto &mesh = std::get<TriangleMesh>(*surface.shape);
        Vec3 low = map.point(mesh.points[mesh.triangles[triangles[0]][0]]);
        Vec3 high = low;
        for (const std::uint32_t triangle : triangles)
            for (const std::uint32_t corner : mesh.triangles[triangle]) {
                const Vec3 p = map.point(mesh.points[corner]);
                low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
                high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
            }
        const Vec3 extent = high - low;
        const float scale = 1 / std::max(largest_coordinate(extent), std::numeric_limits<float>::min());

        struct Member {
            std::uint64_t key;
            std::uint32_t triangle;
        };
        std::vector<Member> members;
        members.reserve(triangles.size());
        for (const std::uint32_t triangle : triangles) {
            const PatchPoint middle = point_in_world(*surface.shape, map, triangle, {1 / 3.0f, 1 / 3.0f});
            const std::uint64_t facing = facing_of(middle.normal);
            members.push_back({facing << 32 | morton((middle.point - low) * scale), triangle});
        }
        std::ranges::sort(members,
                          [](Member a, Member b) { return a.key != b.key ? a.key < b.key : a.triangle < b.triangle; });

        double group_area = 0;
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i == 0 || members[i].key >> 32 != members[i - 1].key >> 32 || group_area >= side * side) {
                patches.all.push_back({placement, static_cast<std::uint32_t>(patches.facets.size()), 0, 0});
                group_area = 0;
                ++group_count;
            }
            group_area += area_of_triangle(placement, members[i].triangle);
            const std::uint32_t panel = surface.first_panel + members[i].triangle;
            patches.panels[panel].first_patch = static_cast<std::uint32_t>(patches.all.size() - 1);
            patches.facets.push_back({panel, 0, 0});
            ++patches.all.back().facet_count;
        }
        grouped_count += members.size();
    }

    // A corner of the latest placement's lattice.
    struct Corner {
        Vec3 point;
        Vec3 normal;
        float cell_side;
    };

    void add_corner(std::size_t placement, std::uint32_t primitive, Pair uv, float cell_side,
                    std::vector<Corner> &corners_of_placement) {
        const Surface &surface = patches.surfaces[placement];
        const PatchPoint place = point_in_world(*surface.shape, surface.world_from_object, primitive, uv);
        const Vec3 flat = unit_length(place.normal, {0, 0, 1});
        corners_of_placement.push_back({place.point, unit_length(place.shading_normal, flat), cell_side});
        patches.corners.push_back(0);
    }

    void add_triangle_corners(std::size_t placement, std::uint32_t triangle, int n,
                              std::vector<Corner> &corners_of_placement) {
        const auto cell_side =
            static_cast<float>(std::sqrt(area_of_triangle(placement, triangle)) / static_cast<double>(n));
        const auto count = static_cast<float>(n);
        for (int j = 0; j <= n; ++j)
            for (int i = 0; i <= n - j; ++i)
                add_corner(placement, triangle, {static_cast<float>(i) / count, static_cast<float>(j) / count},
                           cell_side, corners_of_placement);
    }

    void add_grid_corners(std::size_t placement, std::uint32_t primitive, int columns, int rows,
                          std::vector<Corner> &corners_of_placement) {
        const bool is_quad = std::holds_alternative<Quads>(*patches.surfaces[placement].shape);
        const double cell_area = is_quad ? area_of_quad(placement, primitive) / columns / rows : side * side;
        for (int j = 0; j <= rows; ++j)
            for (int i = 0; i <= columns; ++i)
                add_corner(placement, primitive,
                           {static_cast<float>(i) / static_cast<float>(columns),
                            static_cast<float>(j) / static_cast<float>(rows)},
                           static_cast<float>(std::sqrt(cell_area)), corners_of_placement);
    }

    // Makes one vertex of the corners that agree. They are looked at in their order along a direction in which no scene
    // is likely to have its points side by side.
    void merge(const std::vector<Corner> &lattice, std::size_t first_corner) {
        const Vec3 direction = normalized({0.3713f, 0.8147f, 0.4451f});
        std::vector<std::uint32_t> order(lattice.size());
        std::iota(order.begin(), order.end(), 0u);
        std::vector<float> depths(lattice.size());
        for (std::size_t i = 0; i < lattice.size(); ++i)
            depths[i] = dot(lattice[i].point, direction);
        std::ranges::sort(order, [&](std::uint32_t a, std::uint32_t b) {
            return depths[a] != depths[b] ? depths[a] < depths[b] : a < b;
        });

        const auto tolerance = [&](const Corner &c) {
            return std::max(0.02f * c.cell_side, 1e-6f * largest_coordinate(c.point));
        };
        // The vertices so far, by the corner that stands for each.
        std::vector<std::uint32_t> merged;
        for (const std::uint32_t i : order) {
            const Corner &corner = lattice[i];
            const float reach = tolerance(corner);
            std::size_t v = merged.size();
            bool is_found = false;
            while (v > 0 && !is_found && depths[i] - depths[merged[v - 1]] <= reach) {
                const Corner &other = lattice[merged[--v]];
                is_found = length(corner.point - other.point) <= std::min(reach, tolerance(other)) &&
                           dot(corner.normal, other.normal) >= least_cosine;
            }
            if (!is_found) {
                v = merged.size();
                merged.push_back(i);
            }
            patches.corners[first_corner + i] = static_cast<std::uint32_t>(patches.vertices + v);
        }
        patches.vertices += merged.size();
    }

    void sum_areas() {
        for (Patch &patch : patches.all) {
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

    double area_of_cell(std::size_t placement, std::uint32_t primitive, const Panel &panel, std::uint32_t cell) const {
        const Surface &surface = patches.surfaces[placement];
        const double columns = panel.columns;
        const double rows = panel.rows;
        if (std::holds_alternative<TriangleMesh>(*surface.shape))
            return area_of_triangle(placement, primitive) / (columns * rows);
        if (std::holds_alternative<Quads>(*surface.shape))
            return area_of_quad(placement, primitive) / (columns * rows);
        // Archimedes: the area of a zone goes with its height.
        const double row = cell / panel.columns;
        const double height = std::cos(std::numbers::pi * row / rows) - std::cos(std::numbers::pi * (row + 1) / rows);
        const double radius = radius_of_sphere(placement);
        return 2 * std::numbers::pi * radius * radius * height / columns;
    }

    Patches &patches;
    std::span<const Placement> placed;
    std::vector<std::size_t> kept; // placements that have patches, in their order
    double total_area = 0;
    double side = 0; // of a patch
    std::size_t group_count = 0;
    std::size_t grouped_count = 0; // triangles
};

Patches::Patches(std::span<const Placement> placements, std::size_t budget) { Maker(*this, placements, budget); }

Hit Patches::point_of(std::uint32_t index, Pair numbers) const {
    const Patch &patch = all[index];
    const Facet *facet = &facets[patch.first_facet];
    if (patch.facet_count > 1) {
        // The facet by its share of the area; what is left of the number is as good as new.
        const float wanted = numbers.u * patch.area;
        const Facet *end = facet + patch.facet_count;
        const Facet *found =
            std::upper_bound(facet, end - 1, wanted, [](float area, const Facet &f) { return area < f.area_up_to; });
        const float before = found == facet ? 0.0f : (found - 1)->area_up_to;
        const float share = found->area_up_to - before;
        numbers.u = share > 0 ? std::clamp((wanted - before) / share, 0.0f, 0x1.fffffep-1f) : 0.5f;
        facet = found;
    }

    const Panel &panel = panels[facet->panel];
    const Surface &surface = surfaces[patch.placement];
    Pair uv;
    if (std::holds_alternative<TriangleMesh>(*surface.shape)) {
        uv = point_in_triangle_cell(panel.columns, facet->cell, numbers);
    } else {
        const std::uint32_t column = facet->cell % panel.columns;
        const std::uint32_t row = facet->cell / panel.columns;
        uv = {(static_cast<float>(column) + numbers.u) / panel.columns,
              (static_cast<float>(row) + numbers.v) / panel.rows};
        if (std::holds_alternative<Sphere>(*surface.shape)) {
            // Uniform in the height instead of the angle.
            const float low = std::cos(pi * static_cast<float>(row) / panel.rows);
            const float high = std::cos(pi * static_cast<float>(row + 1) / panel.rows);
            uv.v = std::acos(std::clamp(low + (high - low) * numbers.v, -1.0f, 1.0f)) * inverse_pi;
        }
    }

    const std::uint32_t primitive = facet->panel - surface.first_panel;
    const PatchPoint place = point_in_world(*surface.shape, surface.world_from_object, primitive, uv);
    Hit hit{};
    hit.exists = true;
    hit.point = place.point;
    hit.geometric_normal = unit_length(place.normal, {0, 0, 1});
    hit.shading_normal = unit_length(place.shading_normal, hit.geometric_normal);
    if (dot(hit.shading_normal, hit.geometric_normal) < 0)
        hit.shading_normal = -hit.shading_normal;
    hit.clearance = clearance_of(place.point, std::sqrt(patch.area));
    hit.placement = patch.placement;
    hit.primitive = primitive;
    hit.on_primitive = uv;
    return hit;
}

Patches::Footing Patches::footing_in_grid(const Panel &panel, Pair uv) {
    const float x = std::clamp(uv.u, 0.0f, 1.0f) * panel.columns;
    const float y = std::clamp(uv.v, 0.0f, 1.0f) * panel.rows;
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

Patches::Footing Patches::footing_in_triangle(const Panel &panel, Pair uv) {
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

Patches::Footing Patches::footing(const Panel &panel, bool is_triangle, Pair uv) {
    return is_triangle ? footing_in_triangle(panel, uv) : footing_in_grid(panel, uv);
}

bool Patches::footing_at(const Hit &hit, const Panel *&panel, Footing &result) const {
    const Surface &surface = surfaces[hit.placement];
    if (surface.first_panel == none)
        return false;
    panel = &panels[surface.first_panel + hit.primitive];
    const bool is_triangle = std::holds_alternative<TriangleMesh>(*surface.shape);
    const Pair uv = is_triangle ? hit.on_primitive
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
        result.vertices[i] = corners[panel->first_corner + found.corners[i]];
    result.weights = found.weights;
    return true;
}

std::vector<Color> Patches::at_vertices(std::span<const Color> of_patches) const {
    // The corners of a facet, from a point in the middle of its cell.
    const auto footing_of = [&](const Patch &patch, const Facet &facet) {
        const Panel &panel = panels[facet.panel];
        const bool is_triangle = std::holds_alternative<TriangleMesh>(*surfaces[patch.placement].shape);
        const Pair middle = is_triangle ? point_in_triangle_cell(panel.columns, facet.cell, {0.5f, 0.5f})
                                        : Pair{(static_cast<float>(facet.cell % panel.columns) + 0.5f) / panel.columns,
                                               (static_cast<float>(facet.cell / panel.columns) + 0.5f) / panel.rows};
        Footing result = footing(panel, is_triangle, middle);
        for (std::uint32_t &corner : result.corners)
            corner = corners[panel.first_corner + corner];
        return std::pair(result, is_triangle ? 3u : 4u);
    };

    std::vector<Color> sums(vertices);
    std::vector<float> areas(vertices);
    // Adds to the vertices of each facet what is found for it.
    const auto add_up = [&](bool only_grouped, auto value_of) {
        for (std::size_t p = 0; p < all.size(); ++p) {
            const Patch &patch = all[p];
            if (only_grouped && !panels[facets[patch.first_facet].panel].is_grouped)
                continue;
            float before = 0;
            for (std::uint32_t f = 0; f < patch.facet_count; ++f) {
                const Facet &facet = facets[patch.first_facet + f];
                const float area = facet.area_up_to - before;
                before = facet.area_up_to;
                const auto [place, count] = footing_of(patch, facet);
                const Color value = value_of(p, place);
                for (std::size_t i = 0; i < count; ++i) {
                    sums[place.corners[i]] += value * area;
                    areas[place.corners[i]] += area;
                }
            }
        }
    };
    add_up(false, [&](std::size_t patch, const Footing &) { return of_patches[patch]; });
    std::vector<Color> result(vertices);
    const auto take_means = [&] {
        for (std::size_t v = 0; v < vertices; ++v)
            if (areas[v] > 0)
                result[v] = sums[v] * (1 / areas[v]);
    };
    take_means();

    for (int round = 0; round < spreading_rounds; ++round) {
        std::ranges::fill(sums, Color{});
        std::ranges::fill(areas, 0.0f);
        add_up(true, [&](std::size_t, const Footing &place) {
            return (result[place.corners[0]] + result[place.corners[1]] + result[place.corners[2]]) * (1 / 3.0f);
        });
        take_means();
    }
    return result;
}

} // namespace vantor
