// Half-edges: which vertices, edges and faces of a polygon mesh are neighbours.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <vector>

namespace vantor {

using Index = std::uint32_t;
constexpr Index nobody = ~0u; ///< The twin of a half-edge at a border.

/// Polygons as half-edges: each runs along one side of one face, counter-clockwise.
struct Topology {
    std::vector<Index> vertex; // where the half-edge begins
    std::vector<Index> twin;   // the half-edge the other way, of the neighbouring face; `nobody` at a border
    std::vector<Index> edge;
    std::vector<Index> next; // around the face
    std::vector<Index> prev;
    std::vector<Index> face;
    std::size_t vertices = 0;
    std::size_t edges = 0;
    std::size_t faces = 0;

    Index size() const { return static_cast<Index>(vertex.size()); }

    /// One half-edge of each edge.
    bool is_first(Index h) const { return twin[h] == nobody || h < twin[h]; }
    Index end(Index h) const { return vertex[next[h]]; }
};

/// A half-edge by the ends of its edge, the lower first.
struct Ends {
    Index low;
    Index high;
    Index half_edge;

    bool is_same_edge(const Ends &other) const { return low == other.low && high == other.high; }
    bool operator<(const Ends &other) const {
        return std::tie(low, high, half_edge) < std::tie(other.low, other.high, other.half_edge);
    }
};

/// Fills in the twins and edges. Neighbours are the two faces that run along an edge in opposite directions. Where
/// there are more, or they turn the same way, each has a border there. Returns the half-edges in the order of their
/// edges.
std::vector<Ends> pair_half_edges(Topology &t);

} // namespace vantor
