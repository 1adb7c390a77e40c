// Patch sizes: which surfaces have patches, and into how many each of their primitives is divided.
#include "libvantor/radiosity/patch_sizes.h"

#include "libvantor/radiosity/patch_points.h"

namespace vantor {

namespace {

constexpr double most_columns = 4096;

double area_of(Vec3 a, Vec3 b, Vec3 c) {
    const Vec3 normal = cross(b - a, c - a);
    return 0.5 * std::sqrt(static_cast<double>(dot(normal, normal)));
}

bool has_patches(const Placement &placement) {
    const Shape &shape = placement.object->shape;
    const bool is_known = std::holds_alternative<TriangleMesh>(shape) || std::holds_alternative<Quads>(shape) ||
                          std::holds_alternative<Sphere>(shape);
    const bool is_whole = !placement.instances && placement.object->trimmers.empty();
    return is_known && is_whole && is_diffuse(placement.material->bsdf) && !placement.material->is_see_through();
}

int rounded_columns(double length, double side, double most) {
    return static_cast<int>(std::clamp(std::round(length / side), 1.0, std::clamp(most, 1.0, most_columns)));
}

// The least number of patches that are worth having.
std::size_t least_of(const Shape &shape) {
    if (const auto *mesh = std::get_if<TriangleMesh>(&shape))
        return std::min(mesh->triangles.size(), facing_count);
    return std::holds_alternative<Sphere>(shape) ? 8 : primitives_of(shape);
}

} // namespace

PatchSizes::PatchSizes(std::span<const Placement> placements, std::span<const PatchData::Surface> of_placements,
                       std::size_t budget, const Interrupt &stop)
    : placed(placements), surfaces(of_placements), interrupt(stop), triangle_areas(placements.size()) {
    choose_placements(budget);
    choose_side(budget);
}

int PatchSizes::MeshDivision::operator()(double area) const {
    const double exact = std::sqrt(area) / side;
    if (exact < 0.75)
        return 0;
    const double doublings = std::round(std::log2(exact / unit));
    const double n =
        doublings >= 0 ? unit * std::exp2(doublings) : std::min<double>(unit, std::exp2(std::round(std::log2(exact))));
    return static_cast<int>(std::clamp(n, 1.0, most_columns));
}

double PatchSizes::area_of_quad(std::size_t placement, std::uint32_t quad) const {
    const auto [shape, map, first_panel] = surfaces[placement];
    const Quads::Corners &c = std::get<Quads>(*shape).corners[quad];
    return 2 * area_of(map.point(c[0]), map.point(c[1]), map.point(c[3]));
}

double PatchSizes::radius_of_sphere(std::size_t placement) const {
    const auto [shape, map, first_panel] = surfaces[placement];
    return static_cast<double>(std::get<Sphere>(*shape).radius) * std::cbrt(std::fabs(map.determinant));
}

// Keeps the areas of its triangles.
double PatchSizes::area_of_placement(std::size_t i) {
    const auto &[shape, map, first_panel] = surfaces[i];
    if (std::holds_alternative<Sphere>(*shape))
        return 4 * static_cast<double>(pi) * radius_of_sphere(i) * radius_of_sphere(i);
    double sum = 0;
    if (const auto *mesh = std::get_if<TriangleMesh>(shape)) {
        triangle_areas[i].reserve(mesh->triangles.size());
        for (const TriangleMesh::Triangle &t : mesh->triangles) {
            interrupt.check();
            triangle_areas[i].push_back(
                area_of(map.point(mesh->points[t[0]]), map.point(mesh->points[t[1]]), map.point(mesh->points[t[2]])));
            sum += triangle_areas[i].back();
        }
        return sum;
    }
    for (std::uint32_t p = 0; p < primitives_of(*shape); ++p) {
        interrupt.check();
        sum += area_of_quad(i, p);
    }
    return sum;
}

// The placements that have most area for each of their patches, as many as there may be.
void PatchSizes::choose_placements(std::size_t budget) {
    std::vector<double> areas(placed.size());
    for (std::size_t i = 0; i < placed.size(); ++i) {
        interrupt.check();
        if (!has_patches(placed[i]))
            continue;
        areas[i] = area_of_placement(i);
        if (areas[i] > 0 && std::isfinite(areas[i]))
            kept.push_back(i);
    }
    const auto area_of_patch = [&](std::size_t i) {
        return areas[i] / static_cast<double>(least_of(placed[i].object->shape));
    };
    std::ranges::stable_sort(kept, [&](std::size_t a, std::size_t b) { return area_of_patch(a) > area_of_patch(b); });

    const std::size_t most = std::max<std::size_t>(budget, 256);
    std::size_t count = 0;
    std::size_t end = 0;
    while (end < kept.size() && (count += least_of(placed[kept[end]].object->shape)) <= most)
        total_area += areas[kept[end++]];
    kept.resize(end);
    std::ranges::sort(kept);
}

// How long the side of a patch is, so that there are about as many as wanted.
void PatchSizes::choose_side(std::size_t budget) {
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

double PatchSizes::count_of(std::size_t i) const {
    const Shape &shape = *surfaces[i].shape;
    if (std::holds_alternative<Sphere>(shape))
        return 2.0 * rows_of_sphere(i) * rows_of_sphere(i);
    double count = 0;
    if (std::holds_alternative<Quads>(shape)) {
        for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
            interrupt.check();
            const auto [columns, rows] = columns_and_rows(i, p);
            count += static_cast<double>(columns) * rows;
        }
        return count;
    }
    const MeshDivision division = division_of(i);
    double grouped = 0;
    for (std::uint32_t p = 0; p < primitives_of(shape); ++p) {
        interrupt.check();
        const double area = area_of_triangle(i, p);
        const int n = division(area);
        count += static_cast<double>(n) * n;
        grouped += n == 0 ? area : 0.0;
    }
    return count + grouped / (side * side);
}

std::array<int, 2> PatchSizes::columns_and_rows(std::size_t placement, std::uint32_t quad) const {
    const auto [shape, map, first_panel] = surfaces[placement];
    const Quads::Corners &c = std::get<Quads>(*shape).corners[quad];
    // A strip that is thinner than a patch has no more of them than goes with its area.
    const double most = std::ceil(4 * area_of_quad(placement, quad) / (side * side));
    const double u = length(map.linear(c[1] - c[0]));
    const double v = length(map.linear(c[3] - c[0]));
    const int rows = rounded_columns(v, side, most);
    return {rounded_columns(u, side, most / rows), rows};
}

int PatchSizes::rows_of_sphere(std::size_t placement) const {
    return std::max(2, rounded_columns(static_cast<double>(pi) * radius_of_sphere(placement), side, 1024));
}

PatchSizes::MeshDivision PatchSizes::division_of(std::size_t placement) const {
    double largest = 0;
    const std::size_t count = primitives_of(*surfaces[placement].shape);
    for (std::uint32_t p = 0; p < count; ++p) {
        interrupt.check();
        largest = std::max(largest, area_of_triangle(placement, p));
    }
    const double exact = std::sqrt(largest) / side;
    const double bisections = std::max(0.0, std::floor(std::log2(std::max(exact, 1.0))) - 2);
    return {side, std::max(1, static_cast<int>(std::round(exact / std::exp2(bisections))))};
}

} // namespace vantor
