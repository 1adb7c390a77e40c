// Bicubic patches: a grid of bicubic patches, each spanned by 4 x 4 control points.
#include "libvantor/shapes/bicubic_patches.h"

#include "libvantor/shapes/spline.h"

namespace vantor {

namespace {

// More than this take gigabytes, and are most likely a mistyped number.
constexpr std::size_t most_triangles = 50'000'000;

// A place along one side of the grid.
struct Place {
    std::size_t segment;
    double t;
};

// One side of the grid: a spline over so many control points, open or closed.
struct Side {
    Spline spline;
    std::size_t point_count;
    bool is_closed;

    std::size_t segments() const { return spline.segments_of(point_count, is_closed); }

    std::size_t control(std::size_t segment, std::size_t i) const {
        return (segment * static_cast<std::size_t>(spline.step) + i) % point_count;
    }

    // Whether each segment begins where the one before it ends, whatever the control points.
    bool is_continuous() const {
        const CubicWeights end = spline.weights(1);
        const CubicWeights begin = spline.weights(0);
        const auto step = static_cast<std::size_t>(spline.step);
        std::array<double, 8> difference{};
        for (std::size_t i = 0; i < 4; ++i) {
            difference[i] += end[i];
            difference[i + step] -= begin[i];
        }
        return std::ranges::all_of(difference, [](double d) { return std::fabs(d) <= 1e-9; });
    }

    // The place that stands for this one: where two segments meet, the beginning of the second, so that both have the
    // same point, bit by bit, and no crack opens between them.
    Place shared(Place place, bool are_joined) const {
        const std::size_t count = segments();
        if (!are_joined || place.t < 1 || (place.segment + 1 == count && !is_closed))
            return place;
        return {(place.segment + 1) % count, 0};
    }
};

class Grid {
  public:
    Grid(std::vector<VtVector3> all_points, Side along_u, Side along_v)
        : points(std::move(all_points)), u(along_u), v(along_v) {
        VtVector3 low = points.front(), high = points.front();
        for (const VtVector3 &p : points)
            for (int c = 0; c < 3; ++c) {
                low[c] = std::min(low[c], p[c]);
                high[c] = std::max(high[c], p[c]);
            }
        const double across = VtVector3(high[0] - low[0], high[1] - low[1], high[2] - low[2]).Length() /
                              static_cast<double>(points.size());
        smallest_normal = 1e-6 * across * across;
    }

    VtVector3 point(Place at_u, Place at_v) const {
        return combined(at_u, at_v, u.spline.weights(at_u.t), v.spline.weights(at_v.t));
    }

    // Where an edge has collapsed into a point, there is no normal: that of a place a little further inside stands for
    // it. Zero if there is none either.
    Vec3 normal(Place at_u, Place at_v) const {
        for (const double inwards : {0.0, 1e-4, 1e-2}) {
            const VtVector3 found = normal_at({at_u.segment, at_u.t + (0.5 - at_u.t) * inwards},
                                              {at_v.segment, at_v.t + (0.5 - at_v.t) * inwards});
            const double size = found.Length();
            if (size > smallest_normal)
                return to_float({found[0] / size, found[1] / size, found[2] / size});
        }
        return {};
    }

  private:
    VtVector3 combined(Place at_u, Place at_v, const CubicWeights &weights_u, const CubicWeights &weights_v) const {
        std::array<VtVector3, 4> curve;
        for (std::size_t j = 0; j < 4; ++j) {
            const std::size_t row = v.control(at_v.segment, j) * u.point_count;
            std::array<VtVector3, 4> control;
            for (std::size_t i = 0; i < 4; ++i)
                control[i] = points[row + u.control(at_u.segment, i)];
            curve[j] = weighted_sum(weights_u, control);
        }
        return weighted_sum(weights_v, curve);
    }

    VtVector3 normal_at(Place at_u, Place at_v) const {
        const VtVector3 along_u = combined(at_u, at_v, u.spline.slopes(at_u.t), v.spline.weights(at_v.t));
        const VtVector3 along_v = combined(at_u, at_v, u.spline.weights(at_u.t), v.spline.slopes(at_v.t));
        return cross(along_u, along_v);
    }

    std::vector<VtVector3> points; // row after row
    Side u;
    Side v;
    double smallest_normal; // below it, the normal is rounding
};

// The side, or nothing after saying what is wrong with it. A basis or step of its own counts before those of both.
std::optional<Side> make_side(const Parameters &parameters, bool is_u, const VtMatrix4 &basis_of_both,
                              std::size_t point_count, const CallReport &report) {
    const VtMatrix4 basis = basis_of(parameters, is_u ? "basis_u" : "basis_v", basis_of_both, report);
    VtLong step = natural_step(basis);
    for (const char *name : {"step", is_u ? "step_u" : "step_v"})
        if (parameters.is_given(name))
            step = parameters.integer(name);
    const Side side{{basis, step}, point_count, parameters.is_on(is_u ? "wrap_u" : "wrap_v")};
    if (side.segments() > 0)
        return side;
    parameters.complain(
        is_u ? "columns" : "points",
        joined({"makes ", is_u ? "rows" : "columns", " of ", std::to_string(point_count), " points (with the step ",
                std::to_string(side.spline.step), ", ", side.spline.fitting_counts(side.is_closed),
                " come out even); nothing of the patches will be seen"}),
        report);
    return {};
}

// Both ends of each segment are among the places.
std::vector<Place> places_along(const Side &side, std::size_t divisions) {
    std::vector<Place> places;
    for (std::size_t segment = 0; segment < side.segments(); ++segment)
        for (std::size_t i = 0; i <= divisions; ++i)
            places.push_back({segment, static_cast<double>(i) / static_cast<double>(divisions)});
    return places;
}

TriangleMesh tessellated(const Grid &grid, const Side &u, const Side &v, std::size_t divisions) {
    const std::vector<Place> places_u = places_along(u, divisions);
    const std::vector<Place> places_v = places_along(v, divisions);
    const bool are_joined_u = u.is_continuous();
    const bool are_joined_v = v.is_continuous();
    const auto fraction = [](Place place, const Side &side) {
        return static_cast<float>((static_cast<double>(place.segment) + place.t) /
                                  static_cast<double>(side.segments()));
    };

    TriangleMesh mesh;
    const std::size_t count = places_u.size() * places_v.size();
    mesh.points.reserve(count);
    mesh.normals.reserve(count);
    mesh.uvs.reserve(count);
    for (const Place &at_v : places_v)
        for (const Place &at_u : places_u) {
            mesh.points.push_back(to_float(grid.point(u.shared(at_u, are_joined_u), v.shared(at_v, are_joined_v))));
            mesh.normals.push_back(grid.normal(at_u, at_v));
            mesh.uvs.push_back({fraction(at_u, u), fraction(at_v, v)});
        }

    const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        const std::array corners{mesh.points[a], mesh.points[b], mesh.points[c]};
        if (std::ranges::all_of(corners, is_usable) && has_area(corners[0], corners[1], corners[2]))
            mesh.triangles.push_back({a, b, c});
    };
    const auto columns = static_cast<std::uint32_t>(places_u.size());
    for (std::uint32_t j = 0; j + 1 < places_v.size(); ++j)
        for (std::uint32_t i = 0; i + 1 < columns; ++i)
            if (places_u[i].segment == places_u[i + 1].segment && places_v[j].segment == places_v[j + 1].segment) {
                const std::uint32_t corner = j * columns + i;
                add(corner, corner + 1, corner + columns + 1);
                add(corner, corner + columns + 1, corner + columns);
            }
    for (Vec3 &p : mesh.points)
        if (!is_usable(p))
            p = {};
    return mesh;
}

} // namespace

std::optional<TriangleMesh> make_patches(const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<VtVector3> &given = parameters.vector3_array("points");
    if (!check_storage(given, "points", parameters, report))
        return {};
    std::vector<VtVector3> points = copied(given);
    const auto columns = static_cast<std::size_t>(parameters.integer("columns"));
    if (points.size() % columns != 0) {
        parameters.complain(
            "points",
            joined({"has ", counted(static_cast<long>(points.size()), "element"), " (expected whole rows of ",
                    std::to_string(columns), "); nothing of the patches will be seen"}),
            report);
        return {};
    }
    const auto unusable = std::ranges::find_if_not(points, [](const VtVector3 &p) { return is_usable(to_float(p)); });
    if (unusable != points.end()) {
        parameters.complain("points",
                            joined({"has an unusable element ", std::to_string(unusable - points.begin()),
                                    " (expected finite coordinates up to 1e9); nothing of the patches will be seen"}),
                            report);
        return {};
    }
    const VtMatrix4 basis = basis_of(parameters, "basis", VtBezierBasis(), report);
    const std::optional<Side> u = make_side(parameters, true, basis, columns, report);
    if (!u)
        return {};
    const std::optional<Side> v = make_side(parameters, false, basis, points.size() / columns, report);
    if (!v)
        return {};

    const auto divisions = static_cast<std::size_t>(parameters.integer("divisions"));
    const std::size_t patches = u->segments() * v->segments();
    if (patches > most_triangles / (2 * divisions * divisions)) {
        report.diagnostic(
            joined({"the patches make ", std::to_string(patches), " times ", std::to_string(2 * divisions * divisions),
                    " triangles, more than ", std::to_string(most_triangles),
                    " (expected fewer \"divisions\"); nothing of the patches will be seen"}));
        return {};
    }
    TriangleMesh mesh = tessellated(Grid(std::move(points), *u, *v), *u, *v, divisions);
    if (mesh.triangles.empty()) {
        report.diagnostic("the patches have no usable area; nothing of them will be seen");
        return {};
    }
    return mesh;
}

} // namespace vantor
