// Catmull and Clark's rules: polygons made finer step by step, and the smooth surface that they tend to.
#include "libvantor/shapes/catmull_clark.h"

namespace vantor {

namespace {

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
    if (t.twin[half_edge] == nobody)
        return infinitely_sharp;
    return polygons.sharpness[t.edge[half_edge]];
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
            const float t = now[v].fading / static_cast<float>(now[v].fading_creases);
            result[v] = sharper * t + moved_point(p, then[v], rule_of(then[v], is_corner)) * (1 - t);
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

} // namespace

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

namespace {

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

} // namespace

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

} // namespace vantor
