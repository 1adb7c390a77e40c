// Subdivision: the smooth surface of a polygon mesh, by Catmull and Clark.
//
// Catmull, Clark, "Recursively generated B-spline surfaces on arbitrary topological meshes", 1978; creases: DeRose,
// Kass, Truong, "Subdivision Surfaces in Character Animation", 1998; half-edges: Dupuy, Vanhoey, "A Halfedge Refinement
// Rule for Parallel Catmull-Clark Subdivision", 2021; limits: Halstead, Kass, DeRose, "Efficient, Fair Interpolation
// using Catmull-Clark Surfaces", 1993.
#include "libvantor/shapes/subdivision.h"

#include <limits>
#include <span>

namespace vantor {

namespace {

// More than this take more memory than a picture is worth, and come from a slip of the pen.
constexpr std::size_t most_triangles = 20'000'000;

constexpr std::uint32_t nobody = ~0u;
constexpr float infinitely_sharp = std::numeric_limits<float>::infinity();

using Index = std::uint32_t;

// Polygons as half-edges: each runs along one side of one face, counter-clockwise.
struct Topology {
    std::vector<Index> vertex; // where the half-edge begins
    std::vector<Index> twin;   // the half-edge the other way, of the neighbouring face; nobody at a border
    std::vector<Index> edge;
    std::vector<Index> next; // around the face
    std::vector<Index> prev;
    std::vector<Index> face;
    std::size_t vertices = 0;
    std::size_t edges = 0;
    std::size_t faces = 0;

    Index size() const { return static_cast<Index>(vertex.size()); }

    // One half-edge of each edge.
    bool is_first(Index h) const { return twin[h] == nobody || h < twin[h]; }
    Index end(Index h) const { return vertex[next[h]]; }
};

struct Polygons {
    Topology topology;
    std::vector<Vec3> points;
    std::vector<Vec3> uvs;        // (u, v, 0) for each point, or none at all
    std::vector<float> sharpness; // of each edge: for so many steps it is a crease
    std::vector<bool> corners;    // whether a point stays where it is
};

// Around a vertex: what its own rule depends on.
struct Surroundings {
    Vec3 ends;       // of its edges, summed up
    Vec3 faces;      // of a point in each of its faces, summed up
    Vec3 sharp_ends; // of its creases, summed up
    Index edges = 0;
    Index creases = 0;
    float fading = 0; // how sharp its creases that are less than one step sharp are, summed up
    Index fading_creases = 0;
};

// Of an edge; borders are sharp.
float sharpness_of(const Polygons &polygons, Index half_edge) {
    const Topology &t = polygons.topology;
    return t.twin[half_edge] == nobody ? infinitely_sharp : polygons.sharpness[t.edge[half_edge]];
}

// What the rules ask. With a threshold of 0 every crease counts; with 1, only those that stay one.
std::vector<Surroundings> surroundings_of(const Polygons &polygons, const std::vector<Vec3> &in_faces,
                                          float threshold) {
    const Topology &t = polygons.topology;
    std::vector<Surroundings> around(t.vertices);
    for (Index h = 0; h < t.size(); ++h) {
        around[t.vertex[h]].faces = around[t.vertex[h]].faces + in_faces[h];
        if (!t.is_first(h))
            continue;
        const float sharpness = sharpness_of(polygons, h);
        const Index ends[] = {t.vertex[h], t.end(h)};
        for (const int i : {0, 1}) {
            Surroundings &at = around[ends[i]];
            const Vec3 other = polygons.points[ends[1 - i]];
            ++at.edges;
            at.ends = at.ends + other;
            if (sharpness > 0 && sharpness >= threshold) {
                ++at.creases;
                at.sharp_ends = at.sharp_ends + other;
            }
            if (sharpness > 0 && sharpness < 1) {
                ++at.fading_creases;
                at.fading += sharpness;
            }
        }
    }
    return around;
}

enum class Rule { Smooth, Crease, Corner };

Rule rule_of(const Surroundings &around, bool is_corner) {
    if (is_corner || around.creases > 2)
        return Rule::Corner;
    return around.creases == 2 ? Rule::Crease : Rule::Smooth;
}

Vec3 moved_point(Vec3 point, const Surroundings &around, Rule rule) {
    if (rule == Rule::Corner || around.edges == 0)
        return point;
    if (rule == Rule::Crease)
        return (around.sharp_ends + 6 * point) * 0.125f;
    // (F + 2R + (n - 3) P) / n, where R is the mean of the edges' middles: (mean of ends + P) / 2.
    const auto n = static_cast<float>(around.edges);
    return (around.faces * (1 / n) + around.ends * (1 / n) + (n - 2) * point) * (1 / n);
}

// A vertex with creases that fade in this step moves between what it does with and without them.
std::vector<Vec3> moved_points(const Polygons &polygons, const std::vector<Vec3> &face_points) {
    const std::vector<Surroundings> now = surroundings_of(polygons, face_points, 0);
    const std::vector<Surroundings> then = surroundings_of(polygons, face_points, 1);
    std::vector<Vec3> result(polygons.points.size());
    for (std::size_t v = 0; v < result.size(); ++v) {
        const Vec3 p = polygons.points[v];
        const bool is_corner = polygons.corners[v];
        const Vec3 sharper = moved_point(p, now[v], rule_of(now[v], is_corner));
        result[v] = sharper;
        if (now[v].fading_creases > 0) {
            const float share = now[v].fading / static_cast<float>(now[v].fading_creases);
            result[v] = sharper * share + moved_point(p, then[v], rule_of(then[v], is_corner)) * (1 - share);
        }
    }
    return result;
}

// The means of the corners of each face.
std::vector<Vec3> means(const Topology &t, const std::vector<Vec3> &values) {
    std::vector<Vec3> sums(t.faces);
    std::vector<Index> counts(t.faces);
    for (Index h = 0; h < t.size(); ++h) {
        sums[t.face[h]] = sums[t.face[h]] + values[t.vertex[h]];
        ++counts[t.face[h]];
    }
    for (std::size_t f = 0; f < t.faces; ++f)
        sums[f] = sums[f] * (1 / static_cast<float>(counts[f]));
    return sums;
}

// Each half-edge h becomes a quad: from its vertex over its edge's new vertex and its face's to that of the edge
// before.
Topology refined(const Topology &t) {
    Topology result;
    const std::size_t count = 4 * static_cast<std::size_t>(t.size());
    for (std::vector<Index> *all :
         {&result.vertex, &result.twin, &result.edge, &result.next, &result.prev, &result.face})
        all->resize(count);
    result.vertices = t.vertices + t.faces + t.edges;
    result.edges = 2 * t.edges + t.size();
    result.faces = t.size();
    const auto first_face = static_cast<Index>(t.vertices);
    const auto first_edge = static_cast<Index>(t.vertices + t.faces);
    const auto first_inner = static_cast<Index>(2 * t.edges);
    for (Index h = 0; h < t.size(); ++h) {
        const Index before = t.prev[h];
        const Index child = 4 * h;
        const Index vertices[] = {t.vertex[h], first_edge + t.edge[h], first_face + t.face[h],
                                  first_edge + t.edge[before]};
        const Index twins[] = {t.twin[h] == nobody ? nobody : 4 * t.next[t.twin[h]] + 3, 4 * t.next[h] + 2,
                               4 * before + 1, t.twin[before] == nobody ? nobody : 4 * t.twin[before]};
        const Index edges[] = {2 * t.edge[h] + (t.is_first(h) ? 0 : 1), first_inner + h, first_inner + before,
                               2 * t.edge[before] + (t.is_first(before) ? 1 : 0)};
        for (Index i = 0; i < 4; ++i) {
            result.vertex[child + i] = vertices[i];
            result.twin[child + i] = twins[i];
            result.edge[child + i] = edges[i];
            result.next[child + i] = child + (i + 1) % 4;
            result.prev[child + i] = child + (i + 3) % 4;
            result.face[child + i] = h;
        }
    }
    return result;
}

Polygons refined(const Polygons &polygons) {
    const Topology &t = polygons.topology;
    const std::vector<Vec3> face_points = means(t, polygons.points);
    std::vector<Vec3> at_half_edges(t.size());
    for (Index h = 0; h < t.size(); ++h)
        at_half_edges[h] = face_points[t.face[h]];

    Polygons result;
    result.topology = refined(t);
    result.points = moved_points(polygons, at_half_edges);
    result.points.insert(result.points.end(), face_points.begin(), face_points.end());
    result.points.resize(result.topology.vertices);
    result.sharpness.assign(result.topology.edges, 0);
    result.corners = polygons.corners;
    result.corners.resize(result.topology.vertices, false);
    for (Index h = 0; h < t.size(); ++h) {
        if (!t.is_first(h))
            continue;
        const Vec3 middle = (polygons.points[t.vertex[h]] + polygons.points[t.end(h)]) * 0.5f;
        const float sharpness = sharpness_of(polygons, h);
        Vec3 &point = result.points[t.vertices + t.faces + t.edge[h]];
        point = middle;
        if (sharpness < 1) {
            const Vec3 smooth = (middle + (at_half_edges[h] + at_half_edges[t.twin[h]]) * 0.5f) * 0.5f;
            point = middle * sharpness + smooth * (1 - sharpness);
        }
        for (const Index half : {0u, 1u})
            result.sharpness[2 * t.edge[h] + half] = std::max(0.0f, sharpness - 1);
    }

    // Texture coordinates are linear along edges and in the middle of faces.
    if (!polygons.uvs.empty()) {
        const std::vector<Vec3> face_uvs = means(t, polygons.uvs);
        result.uvs = polygons.uvs;
        result.uvs.insert(result.uvs.end(), face_uvs.begin(), face_uvs.end());
        result.uvs.resize(result.topology.vertices);
        for (Index h = 0; h < t.size(); ++h)
            result.uvs[t.vertices + t.faces + t.edge[h]] = (polygons.uvs[t.vertex[h]] + polygons.uvs[t.end(h)]) * 0.5f;
    }
    return result;
}

// Where the vertices of quads go in the limit.
std::vector<Vec3> limit_points(const Polygons &polygons) {
    const Topology &t = polygons.topology;
    std::vector<Vec3> opposite(t.size());
    for (Index h = 0; h < t.size(); ++h)
        opposite[h] = polygons.points[t.end(t.next[h])];
    const std::vector<Surroundings> all = surroundings_of(polygons, opposite, 0);
    std::vector<Vec3> result(polygons.points.size());
    for (std::size_t v = 0; v < result.size(); ++v) {
        const Vec3 p = polygons.points[v];
        const Surroundings &around = all[v];
        const Rule rule = rule_of(around, polygons.corners[v]);
        const auto n = static_cast<float>(around.edges);
        if (rule == Rule::Corner || around.edges == 0)
            result[v] = p;
        else if (rule == Rule::Crease)
            result[v] = (around.sharp_ends + 4 * p) * (1 / 6.0f);
        else
            result[v] = (n * n * p + 4 * around.ends + around.faces) * (1 / (n * (n + 5)));
    }
    return result;
}

// The half-edges that leave a vertex, counter-clockwise, from one crease to the next, or all around it.
struct Fan {
    std::vector<Index> half_edges;
    bool is_closed = false;
};

// The normal of the limit surface at a vertex all of whose edges are smooth: across its two tangents there.
Vec3 smooth_normal(const Polygons &polygons, const Fan &fan) {
    const Topology &t = polygons.topology;
    const auto n = static_cast<double>(fan.half_edges.size());
    const double step = 2 * 3.14159265358979323846 / n;
    const double weight = 1 + std::cos(step) + std::cos(step / 2) * std::sqrt(2 * (9 + std::cos(step)));
    Vec3 along_cosine, along_sine;
    for (std::size_t i = 0; i < fan.half_edges.size(); ++i) {
        const Index h = fan.half_edges[i];
        const double angle = step * static_cast<double>(i);
        const Vec3 end = polygons.points[t.end(h)];
        const Vec3 opposite = polygons.points[t.end(t.next[h])];
        along_cosine = along_cosine + end * static_cast<float>(weight * std::cos(angle)) +
                       opposite * static_cast<float>(std::cos(angle) + std::cos(angle + step));
        along_sine = along_sine + end * static_cast<float>(weight * std::sin(angle)) +
                     opposite * static_cast<float>(std::sin(angle) + std::sin(angle + step));
    }
    return cross(along_cosine, along_sine);
}

// On one side of a crease: the mean of the faces there, by their areas.
Vec3 mean_normal(const Topology &t, const std::vector<Vec3> &points, const Fan &fan) {
    Vec3 sum;
    for (const Index h : fan.half_edges) {
        const Vec3 p = points[t.vertex[h]];
        sum = sum + cross(points[t.end(h)] - p, points[t.vertex[t.prev[h]]] - p);
    }
    return sum;
}

// Points are there once for each side of a crease, so that each side has its own normals.
TriangleMesh limit_mesh(const Polygons &polygons) {
    const Topology &t = polygons.topology;
    const std::vector<Vec3> limits = limit_points(polygons);
    const auto is_sharp = [&](Index h) { return sharpness_of(polygons, h) > 0; };

    TriangleMesh mesh;
    std::vector<Index> point_at(t.size(), nobody); // the mesh's point where a half-edge begins
    Fan fan;
    const auto add_fan_from = [&](Index first) {
        fan.half_edges.clear();
        fan.is_closed = false;
        for (Index h = first;;) {
            fan.half_edges.push_back(h);
            const Index last = t.prev[h];
            if (is_sharp(last))
                break;
            h = t.twin[last];
            if (h == first) {
                fan.is_closed = true;
                break;
            }
        }
        const Index v = t.vertex[first];
        const Vec3 normal =
            fan.is_closed && !polygons.corners[v] ? smooth_normal(polygons, fan) : mean_normal(t, limits, fan);
        const float size = length(normal);
        for (const Index h : fan.half_edges)
            point_at[h] = static_cast<Index>(mesh.points.size());
        mesh.points.push_back(limits[v]);
        mesh.normals.push_back(size > std::numeric_limits<float>::min() ? normal * (1 / size) : Vec3());
        if (!polygons.uvs.empty())
            mesh.uvs.push_back({polygons.uvs[v].x, polygons.uvs[v].y});
    };
    for (Index h = 0; h < t.size(); ++h)
        if (is_sharp(h))
            add_fan_from(h);
    for (Index h = 0; h < t.size(); ++h)
        if (point_at[h] == nobody)
            add_fan_from(h);

    mesh.triangles.reserve(2 * t.faces);
    const auto add = [&](Index a, Index b, Index c) {
        if (has_area(mesh.points[a], mesh.points[b], mesh.points[c]))
            mesh.triangles.push_back({a, b, c});
    };
    for (Index h = 0; h + 3 < t.size(); h += 4) {
        add(point_at[h], point_at[h + 1], point_at[h + 2]);
        add(point_at[h], point_at[h + 2], point_at[h + 3]);
    }
    return mesh;
}

// A half-edge by the ends of its edge, the lower first.
struct Ends {
    Index low;
    Index high;
    Index half_edge;

    bool is_same_edge(const Ends &other) const { return low == other.low && high == other.high; }
    auto operator<=>(const Ends &) const = default;
};

Ends ends_of(const Topology &t, Index h) {
    return {std::min(t.vertex[h], t.end(h)), std::max(t.vertex[h], t.end(h)), h};
}

// Neighbours are the two faces that run along an edge in opposite directions. Where there are more, or they turn the
// same way, each has a border there. Returns the half-edges in the order of their edges.
std::vector<Ends> pair_half_edges(Topology &t) {
    std::vector<Ends> all;
    all.reserve(t.size());
    for (Index h = 0; h < t.size(); ++h)
        all.push_back(ends_of(t, h));
    std::ranges::sort(all);
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

// What a script gives, and what is wrong with it.
class Reader {
  public:
    Reader(const Parameters &all_parameters, const CallReport &to) : parameters(all_parameters), report(to) {}

    std::optional<Polygons> read() {
        bool are_whole = is_whole(parameters.vector3_array("points"), "points", parameters, report);
        for (const char *name : {"counts", "indices", "crease_edges", "corner_points"})
            if (parameters.is_given(name))
                are_whole &= is_whole(parameters.long_array(name), name, parameters, report);
        if (parameters.is_given("crease_weights"))
            are_whole &= is_whole(parameters.double_array("crease_weights"), "crease_weights", parameters, report);
        if (parameters.is_given("uvs"))
            are_whole &= is_whole(parameters.vector2_array("uvs"), "uvs", parameters, report);
        if (!are_whole)
            return {};

        Polygons polygons;
        polygons.points = floats_of(parameters.vector3_array("points"));
        Topology &t = polygons.topology;
        t.vertices = polygons.points.size();
        if (!read_faces(polygons))
            return {};
        const std::vector<Ends> ends = pair_half_edges(t);
        polygons.sharpness.assign(t.edges, 0);
        polygons.corners.assign(t.vertices, false);
        if (parameters.is_given("crease_edges"))
            read_creases(polygons, ends);
        else if (parameters.is_given("crease_weights"))
            parameters.complain("crease_weights", "has no effect without \"crease_edges\"", report);
        if (parameters.is_given("corner_points"))
            read_corners(polygons);
        if (parameters.choice("boundary") == "sharp")
            sharpen_border(polygons);
        if (parameters.is_given("uvs"))
            for (const Pair &uv : read_uvs(t.vertices, parameters, report))
                polygons.uvs.push_back({uv.u, uv.v, 0});
        return polygons;
    }

  private:
    // Nothing can be seen of it after that.
    void refuse(std::string_view name, std::initializer_list<std::string_view> parts) const {
        parameters.complain(name, joined({joined(parts), "; nothing of the object will be seen"}), report);
    }

    static std::vector<VtLong> numbers_of(const VtInstanceArray<VtLong> &array) {
        std::vector<VtLong> result;
        array.ForEachBlock(
            [&](const VtLong *elements, VtLong count) { result.insert(result.end(), elements, elements + count); });
        return result;
    }

    // Four for each face, where nothing is given.
    std::optional<std::vector<VtLong>> read_counts(std::size_t index_count) const {
        const std::string given = std::to_string(index_count);
        if (!parameters.is_given("counts")) {
            if (index_count % 4 == 0)
                return std::vector<VtLong>(index_count / 4, 4);
            refuse("indices", {"has ", given,
                               " elements (without \"counts\" all faces are quads: four for each are "
                               "wanted)"});
            return {};
        }
        std::vector<VtLong> counts = numbers_of(parameters.long_array("counts"));
        const auto wrong = std::ranges::find_if(counts, [](VtLong n) { return n < 3; });
        if (wrong != counts.end()) {
            refuse("counts", {"has ", std::to_string(*wrong), " as element ", std::to_string(wrong - counts.begin()),
                              " (3 or more corners are wanted)"});
            return {};
        }
        std::size_t sum = 0;
        for (const VtLong n : counts)
            sum += static_cast<std::size_t>(n);
        if (sum != index_count) {
            refuse("counts", {"adds up to ", std::to_string(sum), " corners (as many as there are indices, ", given,
                              ", are wanted)"});
            return {};
        }
        return counts;
    }

    bool read_faces(Polygons &polygons) const {
        const std::vector<VtLong> indices = numbers_of(parameters.long_array("indices"));
        const std::optional<std::vector<VtLong>> counts = read_counts(indices.size());
        if (!counts)
            return false;
        const auto levels = static_cast<std::size_t>(parameters.integer("levels"));
        if (indices.size() > most_triangles >> (2 * levels - 1)) {
            refuse("levels", {"makes more than ", std::to_string(most_triangles), " triangles (fewer are wanted)"});
            return false;
        }

        std::size_t outside = 0, unusable = 0, repeated = 0;
        std::size_t first_bad = 0;
        Topology &t = polygons.topology;
        std::size_t begin = 0;
        for (std::size_t f = 0; f < counts->size(); ++f) {
            const std::span corners(indices.data() + begin, static_cast<std::size_t>((*counts)[f]));
            begin += corners.size();
            const auto exists = [&](VtLong i) { return i >= 0 && static_cast<std::size_t>(i) < t.vertices; };
            const auto is_good = [&](VtLong i) { return is_usable(polygons.points[static_cast<std::size_t>(i)]); };
            std::size_t *fault = nullptr;
            if (!std::ranges::all_of(corners, exists))
                fault = &outside;
            else if (!std::ranges::all_of(corners, is_good))
                fault = &unusable;
            else if (corners.front() == corners.back() || std::ranges::adjacent_find(corners) != corners.end())
                fault = &repeated;
            if (!fault) {
                add_face(t, corners);
                continue;
            }
            if (outside + unusable + repeated == 0)
                first_bad = f;
            ++*fault;
        }
        if (outside + unusable + repeated > 0)
            report_faults(outside, unusable, repeated, first_bad, t.vertices);
        if (t.faces > 0)
            return true;
        report.diagnostic("the object has no usable face; nothing of it will be seen");
        return false;
    }

    void report_faults(std::size_t outside, std::size_t unusable, std::size_t repeated, std::size_t first,
                       std::size_t vertices) const {
        const std::string all = std::to_string(outside + unusable + repeated);
        const std::string known = vertices == 0
                                      ? "there are no points"
                                      : joined({"indices from 0 to ", std::to_string(vertices - 1), " are wanted"});
        const std::string why = outside > 0    ? known
                                : unusable > 0 ? std::string("finite coordinates up to 1e9 are wanted")
                                               : std::string("corners in a row that differ are wanted");
        parameters.complain(
            "indices",
            joined({"leaves out ", all, " faces, the first of them ", std::to_string(first), " (", why, ")"}), report);
    }

    static void add_face(Topology &t, std::span<const VtLong> corners) {
        const Index first = t.size();
        const auto count = static_cast<Index>(corners.size());
        for (Index i = 0; i < count; ++i) {
            t.vertex.push_back(static_cast<Index>(corners[i]));
            t.next.push_back(first + (i + 1) % count);
            t.prev.push_back(first + (i + count - 1) % count);
            t.face.push_back(static_cast<Index>(t.faces));
        }
        ++t.faces;
    }

    void read_creases(Polygons &polygons, const std::vector<Ends> &ends) const {
        const std::vector<VtLong> points = numbers_of(parameters.long_array("crease_edges"));
        const std::size_t count = points.size() / 2;
        if (points.size() % 2 != 0) {
            parameters.complain("crease_edges",
                                "has an odd number of indices (two for each edge are wanted); it is left out", report);
            return;
        }
        std::vector<float> weights(count, infinitely_sharp);
        if (parameters.is_given("crease_weights")) {
            const VtInstanceArray<double> &given = parameters.double_array("crease_weights");
            bool are_usable = static_cast<std::size_t>(given.Size()) == count;
            std::size_t i = 0;
            if (are_usable)
                given.ForEachBlock([&](const double *elements, VtLong block) {
                    for (VtLong k = 0; k < block; ++k) {
                        are_usable &= elements[k] >= 0;
                        weights[i++] = static_cast<float>(elements[k]);
                    }
                });
            if (!are_usable) {
                parameters.complain("crease_weights",
                                    joined({"has unusable elements (a number from 0 for each of the ",
                                            std::to_string(count), " crease edges is wanted); it is left out"}),
                                    report);
                weights.assign(count, infinitely_sharp);
            }
        }

        std::size_t missing = 0, first_missing = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const auto a = static_cast<Index>(points[2 * i]), b = static_cast<Index>(points[2 * i + 1]);
            auto found = std::ranges::lower_bound(ends, Ends{std::min(a, b), std::max(a, b), 0});
            const bool exists = found != ends.end() && found->low == std::min(a, b) && found->high == std::max(a, b);
            if (exists)
                polygons.sharpness[polygons.topology.edge[found->half_edge]] = weights[i];
            else if (missing++ == 0)
                first_missing = i;
        }
        if (missing > 0)
            parameters.complain("crease_edges",
                                joined({"leaves out ", std::to_string(missing), " edges, the first of them ",
                                        std::to_string(first_missing), " (edges of faces are wanted)"}),
                                report);
    }

    void read_corners(Polygons &polygons) const {
        std::size_t missing = 0;
        VtLong first_missing = 0;
        for (const VtLong point : numbers_of(parameters.long_array("corner_points"))) {
            if (point >= 0 && static_cast<std::size_t>(point) < polygons.corners.size())
                polygons.corners[static_cast<std::size_t>(point)] = true;
            else if (missing++ == 0)
                first_missing = point;
        }
        if (missing > 0)
            parameters.complain("corner_points",
                                joined({"leaves out ", std::to_string(missing), " indices, the first of them ",
                                        std::to_string(first_missing), " (indices from 0 to ",
                                        std::to_string(polygons.corners.size() - 1), " are wanted)"}),
                                report);
    }

    // The corners of the border: points with one face only.
    static void sharpen_border(Polygons &polygons) {
        const Topology &t = polygons.topology;
        std::vector<Index> faces(t.vertices);
        for (const Index v : t.vertex)
            ++faces[v];
        for (Index h = 0; h < t.size(); ++h)
            if (faces[t.vertex[h]] == 1 && t.twin[h] == nobody)
                polygons.corners[t.vertex[h]] = true;
    }

    const Parameters &parameters;
    const CallReport &report;
};

} // namespace

std::optional<TriangleMesh> make_subdivision(const Parameters &parameters, const CallReport &report) {
    std::optional<Polygons> polygons = Reader(parameters, report).read();
    if (!polygons)
        return {};
    // Points that no face names are not seen, but would spoil what they are added to.
    for (Vec3 &p : polygons->points)
        if (!is_usable(p))
            p = {};
    for (VtLong level = 0; level < parameters.integer("levels"); ++level)
        polygons = refined(*polygons);
    TriangleMesh mesh = limit_mesh(*polygons);
    if (mesh.triangles.empty()) {
        report.diagnostic("the object has no usable area; nothing of it will be seen");
        return {};
    }
    return mesh;
}

} // namespace vantor
