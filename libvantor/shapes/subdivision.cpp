// Subdivision: reads polygons with creases from a script, and makes their smooth surface.
#include "libvantor/shapes/subdivision.h"

#include "libvantor/shapes/catmull_clark.h"

#include <span>

namespace vantor {

namespace {

// More than this take gigabytes, and are most likely a mistyped number.
constexpr std::size_t most_triangles = 20'000'000;

// What a script gives, and what is wrong with it.
class Reader {
  public:
    Reader(const Parameters &all_parameters, const CallReport &to) : parameters(all_parameters), report(to) {}

    std::optional<Polygons> read() {
        bool are_whole = check_storage(parameters.vector3_array("points"), "points", parameters, report);
        for (const char *name : {"counts", "indices", "crease_edges", "corner_points"})
            if (parameters.is_given(name))
                are_whole &= check_storage(parameters.long_array(name), name, parameters, report);
        if (parameters.is_given("crease_weights"))
            are_whole &= check_storage(parameters.double_array("crease_weights"), "crease_weights", parameters, report);
        if (parameters.is_given("uvs"))
            are_whole &= check_storage(parameters.vector2_array("uvs"), "uvs", parameters, report);
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
        parameters.complain_without("crease_edges", {"crease_weights"}, report);
        if (parameters.is_given("corner_points"))
            read_corners(polygons);
        if (parameters.choice("boundary") == "sharp")
            sharpen_border(polygons);
        if (parameters.is_given("uvs"))
            for (const Point2f &uv : read_uvs(t.vertices, parameters, report))
                polygons.uvs.push_back({uv.u, uv.v, 0});
        return polygons;
    }

  private:
    // Finer than this, no difference can be seen.
    void refuse(std::string_view name, std::initializer_list<std::string_view> parts) const {
        parameters.complain(name, joined({joined(parts), "; nothing of the object will be seen"}), report);
    }

    // Four for each face, where nothing is given.
    std::optional<std::vector<VtLong>> read_counts(std::size_t index_count) const {
        const std::string given = std::to_string(index_count);
        if (!parameters.is_given("counts")) {
            if (index_count % 4 == 0)
                return std::vector<VtLong>(index_count / 4, 4);
            refuse("indices", {"has ", counted(static_cast<long>(index_count), "element"),
                               " (expected four for each face, as all are quads without \"counts\")"});
            return {};
        }
        const VtInstanceArray<VtLong> &array = parameters.long_array("counts");
        // Untouched elements of an array take no memory, so a script may give any size: it is checked first.
        if (static_cast<std::size_t>(array.Size()) > index_count) {
            refuse("counts", {"has ", counted(static_cast<long>(array.Size()), "element"),
                              " (expected at most as many as there are indices, ", given, ")"});
            return {};
        }
        std::vector<VtLong> counts = copied(array);
        const auto wrong = std::ranges::find_if(counts, [](VtLong n) { return n < 3; });
        if (wrong != counts.end()) {
            refuse("counts", {"has ", std::to_string(*wrong), " as element ", std::to_string(wrong - counts.begin()),
                              " (expected 3 or more corners)"});
            return {};
        }
        std::size_t sum = 0;
        for (const VtLong n : counts)
            sum += static_cast<std::size_t>(n);
        if (sum != index_count) {
            refuse("counts", {"adds up to ", std::to_string(sum), " corners (expected as many as there are indices, ",
                              given, ")"});
            return {};
        }
        return counts;
    }

    bool read_faces(Polygons &polygons) const {
        const VtInstanceArray<VtLong> &given = parameters.long_array("indices");
        const auto index_count = static_cast<std::size_t>(given.Size());
        const auto levels = static_cast<std::size_t>(parameters.integer("levels"));
        if (index_count > most_triangles >> (2 * levels - 1)) {
            refuse("levels", {"makes more than ", std::to_string(most_triangles), " triangles (expected fewer)"});
            return false;
        }
        const std::optional<std::vector<VtLong>> counts = read_counts(index_count);
        if (!counts)
            return false;
        const std::vector<VtLong> indices = copied(given);

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
        else if (t.faces == 0)
            report.diagnostic("the object has no face; nothing of it will be seen");
        return t.faces > 0;
    }

    void report_faults(std::size_t outside, std::size_t unusable, std::size_t repeated, std::size_t first,
                       std::size_t vertices) const {
        const std::string known = vertices == 0 ? "there are no points"
                                                : joined({"expected indices from 0 to ", std::to_string(vertices - 1)});
        const std::string why = outside > 0    ? known
                                : unusable > 0 ? std::string("expected finite coordinates up to 1e9")
                                               : std::string("expected corners that differ from the next one");
        parameters.complain("indices", joined({left_out(outside + unusable + repeated, "face", first), " (", why, ")"}),
                            report);
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

    // The indices of a list that is left out if there are more than make sense: as of any array, its size is checked
    // before its elements are read.
    std::vector<VtLong> at_most(std::size_t most, const char *name) const {
        const VtInstanceArray<VtLong> &array = parameters.long_array(name);
        if (static_cast<std::size_t>(array.Size()) <= most)
            return copied(array);
        parameters.complain(name,
                            joined({"has ", counted(static_cast<long>(array.Size()), "element"), " (expected at most ",
                                    std::to_string(most), "); it is left out"}),
                            report);
        return {};
    }

    void read_creases(Polygons &polygons, const std::vector<Ends> &ends) const {
        const std::vector<VtLong> points = at_most(2 * ends.size(), "crease_edges");
        const std::size_t count = points.size() / 2;
        if (points.size() % 2 != 0) {
            parameters.complain("crease_edges",
                                "has an odd number of indices (expected two for each edge); it is left out", report);
            return;
        }
        std::vector<float> weights(count, infinitely_sharp);
        if (parameters.is_given("crease_weights")) {
            const VtInstanceArray<double> &given = parameters.double_array("crease_weights");
            if (static_cast<std::size_t>(given.Size()) == count)
                weights = copied(given, [](double w) { return static_cast<float>(w); });
            else
                parameters.complain("crease_weights",
                                    joined({"has ", counted(static_cast<long>(given.Size()), "element"),
                                            " (expected one for each of the ", std::to_string(count),
                                            " crease edges); it is left out"}),
                                    report);
            if (!std::ranges::all_of(weights, [](float weight) { return weight >= 0; })) {
                parameters.complain("crease_weights", "has unusable elements (expected numbers from 0); it is left out",
                                    report);
                weights.assign(count, infinitely_sharp);
            }
        }

        std::size_t missing = 0, first_missing = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const auto a = static_cast<Index>(points[2 * i]), b = static_cast<Index>(points[2 * i + 1]);
            auto found = std::lower_bound(ends.begin(), ends.end(), Ends{std::min(a, b), std::max(a, b), 0});
            const bool exists = found != ends.end() && found->low == std::min(a, b) && found->high == std::max(a, b);
            if (exists)
                polygons.sharpness[polygons.topology.edge[found->half_edge]] = weights[i];
            else if (missing++ == 0)
                first_missing = i;
        }
        if (missing > 0)
            parameters.complain("crease_edges",
                                joined({left_out(missing, "edge", first_missing), " (expected edges of faces)"}),
                                report);
    }

    void read_corners(Polygons &polygons) const {
        std::size_t missing = 0;
        std::size_t first_missing = 0;
        const std::vector<VtLong> points = at_most(polygons.corners.size(), "corner_points");
        for (std::size_t i = 0; i < points.size(); ++i) {
            const VtLong point = points[i];
            if (point >= 0 && static_cast<std::size_t>(point) < polygons.corners.size())
                polygons.corners[static_cast<std::size_t>(point)] = true;
            else if (missing++ == 0)
                first_missing = i;
        }
        if (missing > 0)
            parameters.complain("corner_points",
                                joined({left_out(missing, "element", first_missing), " (expected indices from 0 to ",
                                        std::to_string(polygons.corners.size() - 1), ")"}),
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
