// Vertex joining: one vertex of the corners of neighbouring primitives that agree.
#include "libvantor/radiosity/vertex_joining.h"

#include "libvantor/radiosity/key_sort.h"

#include <algorithm>
#include <bit>

namespace vantor {

namespace {

// Flat pieces whose normals differ by more than about 37 degrees have an edge between them.
constexpr float least_cosine = 0.8f;

// Ascends with the number, which is finite; 0 and -0 have the same key.
std::uint32_t ascending_key_of(float number) {
    const auto bits = std::bit_cast<std::uint32_t>(number + 0.0f);
    return bits >> 31 ? ~bits : bits | 0x80000000u;
}

} // namespace

// The corners are looked at in their order along a direction in which no scene is likely to have its points side by
// side.
std::size_t join_corners(const std::vector<LatticeCorner> &corners, std::size_t vertex_count,
                         std::vector<std::uint32_t> &vertices, const Interrupt &interrupt) {
    const Vec3 direction = normalized({0.3713f, 0.8147f, 0.4451f});
    std::vector<Keyed> order;
    order.reserve(corners.size());
    std::vector<float> depths(corners.size());
    for (std::uint32_t i = 0; i < corners.size(); ++i) {
        interrupt.check();
        depths[i] = dot(corners[i].point, direction);
        order.push_back({ascending_key_of(depths[i]), i});
    }
    sort_by_key(order, 32, interrupt);

    const auto tolerance = [&](const LatticeCorner &c) {
        return std::max(0.02f * c.cell_side, 1e-6f * largest_coordinate(c.point));
    };
    // The vertices so far, by the corner that stands for each.
    struct Vertex {
        LatticeCorner corner;
        float depth;
    };
    std::vector<Vertex> merged;
    const std::size_t first = vertices.size();
    vertices.resize(first + corners.size());
    for (const Keyed &keyed : order) {
        interrupt.check();
        const std::uint32_t i = keyed.index;
        const LatticeCorner &corner = corners[i];
        const float reach = tolerance(corner);
        std::size_t v = merged.size();
        bool is_found = false;
        while (v > 0 && !is_found && depths[i] - merged[v - 1].depth <= reach) {
            const LatticeCorner &other = merged[--v].corner;
            is_found = length(corner.point - other.point) <= std::min(reach, tolerance(other)) &&
                       dot(corner.normal, other.normal) >= least_cosine;
        }
        if (!is_found) {
            v = merged.size();
            merged.push_back({corner, depths[i]});
        }
        vertices[first + i] = static_cast<std::uint32_t>(vertex_count + v);
    }
    return vertex_count + merged.size();
}

} // namespace vantor
