// Half-edges: which vertices, edges and faces of a polygon mesh are neighbours.
#include "libvantor/shapes/half_edges.h"

#include <algorithm>

namespace vantor {

namespace {

Ends ends_of(const Topology &t, Index h) {
    return {std::min(t.vertex[h], t.end(h)), std::max(t.vertex[h], t.end(h)), h};
}

} // namespace

std::vector<Ends> pair_half_edges(Topology &t) {
    std::vector<Ends> all;
    all.reserve(t.size());
    for (Index h = 0; h < t.size(); ++h)
        all.push_back(ends_of(t, h));
    std::sort(all.begin(), all.end());
    t.twin.assign(t.size(), nobody);
    t.edge.resize(t.size());
    for (std::size_t first = 0; first < all.size();) {
        std::size_t end = first + 1;
        while (end < all.size() && all[end].is_same_edge(all[first]))
            ++end;
        const Index a = all[first].half_edge, b = all[end - 1].half_edge;
        const bool is_pair = end - first == 2 && t.vertex[a] != t.vertex[b];
        if (is_pair) {
            t.twin[a] = b;
            t.twin[b] = a;
        }
        for (std::size_t i = first; i < end; ++i)
            t.edge[all[i].half_edge] = static_cast<Index>(i == first || !is_pair ? t.edges++ : t.edges - 1);
        first = end;
    }
    return all;
}

} // namespace vantor
