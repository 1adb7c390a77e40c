// Curves: ribbons that face the ray, or tubes, along cubic splines.
#include "libvantor/shapes/curves.h"

#include "libvantor/shapes/spline.h"

#include <numeric>

namespace vantor {

namespace {

bool check_arrays(const Parameters &parameters, const CallReport &report) {
    bool has_all = check_storage(parameters.vector3_array("points"), "points", parameters, report);
    if (parameters.is_given("counts"))
        has_all &= check_storage(parameters.long_array("counts"), "counts", parameters, report);
    if (parameters.is_given("radii"))
        has_all &= check_storage(parameters.double_array("radii"), "radii", parameters, report);
    return has_all;
}

// How many of the points each curve has.
std::optional<std::vector<std::size_t>> counts_of(const Parameters &parameters, std::size_t point_count,
                                                  const CallReport &report) {
    if (!parameters.is_given("counts"))
        return std::vector{point_count};
    const VtInstanceArray<VtLong> &given = parameters.long_array("counts");
    // Untouched elements of an array take no memory, so a script may give any size: it is checked first.
    if (static_cast<std::size_t>(given.Size()) > point_count) {
        parameters.complain("counts",
                            joined({"has ", counted(static_cast<long>(given.Size()), "element"),
                                    " (expected at most as many as there are points, ", std::to_string(point_count),
                                    "); nothing of the curves will be seen"}),
                            report);
        return {};
    }
    std::vector<std::size_t> counts =
        copied(given, [](VtLong count) { return static_cast<std::size_t>(std::max<VtLong>(0, count)); });
    const std::size_t sum = std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    if (sum == point_count)
        return counts;
    parameters.complain("counts",
                        joined({"adds up to ", std::to_string(sum), " points (expected as many as there are, ",
                                std::to_string(point_count), "); nothing of the curves will be seen"}),
                        report);
    return {};
}

// Whether every other control point is a tangent, as of Hermite curves: the others alone weigh 1.
bool has_tangents(const Spline &spline) {
    const CubicWeights weights = spline.weights(0.25);
    return std::fabs(weights[0] + weights[2] - 1) < 1e-9;
}

// The same radius everywhere: where tangents stand among the points, it has no slope.
std::vector<double> even_radii(double radius, const Spline &spline, const std::vector<std::size_t> &counts) {
    std::vector<double> radii;
    const double of_tangent = has_tangents(spline) ? 0.0 : radius;
    for (const std::size_t count : counts)
        for (std::size_t i = 0; i < count; ++i)
            radii.push_back(i % 2 == 0 ? radius : of_tangent);
    return radii;
}

// One for each control point.
std::vector<double> radii_of(const Parameters &parameters, std::size_t point_count, const Spline &spline,
                             const std::vector<std::size_t> &counts, const CallReport &report) {
    if (parameters.is_given("radii")) {
        const VtInstanceArray<double> &given = parameters.double_array("radii");
        const bool is_one_for_each = static_cast<std::size_t>(given.Size()) == point_count;
        if (is_one_for_each) {
            std::vector<double> radii = copied(given);
            // Of a Hermite curve every other one is a slope, which may be negative.
            const auto is_usable_radius = [](double radius) { return std::fabs(radius) <= 1e9; };
            if (std::ranges::all_of(radii, is_usable_radius)) {
                parameters.complain_beside("radii", {"radius"}, report);
                return radii;
            }
        }
        const std::string wrong =
            is_one_for_each ? "has unusable elements (expected numbers up to 1e9)"
                            : joined({"has ", counted(static_cast<long>(given.Size()), "element"),
                                      " (expected one for each of the ", std::to_string(point_count), " points)"});
        parameters.complain("radii", joined({wrong, "; \"radius\" counts instead"}), report);
    }
    return even_radii(parameters.number("radius"), spline, counts);
}

class Maker {
  public:
    Maker(const Spline &of, Curves &into) : spline(of), curves(into) {}

    // The points of one curve.
    void add_curve(const VtVector3 *points, const double *radii, std::size_t count) {
        const std::size_t segments = spline.segments_of(count, false);
        const auto fraction = [&](std::size_t i) { return static_cast<float>(i) / static_cast<float>(segments); };
        for (std::size_t segment = 0; segment < segments; ++segment) {
            const std::size_t first = segment * static_cast<std::size_t>(spline.step);
            std::array<VtVector3, 4> positions;
            std::array<double, 4> widths{};
            for (std::size_t i = 0; i < 4; ++i) {
                positions[i] = points[first + i];
                widths[i] = radii[first + i];
            }
            const Curves::Stretch stretch{fraction(segment), fraction(segment + 1)};
            if (!add_segment(spline.bezier(positions), spline.bezier(widths), stretch, 0))
                ++unusable;
        }
    }

    std::size_t unusable = 0; // segments that were left out

  private:
    // False if there is nothing to see of it. Control points may have a negative radius where the curve has none: such
    // a segment is split until that lies in pieces of a 64th of its length, and what is negative then counts as 0.
    bool add_segment(const std::array<VtVector3, 4> &positions, const std::array<double, 4> &widths,
                     Curves::Stretch stretch, int depth) {
        const auto [narrowest, widest] = std::ranges::minmax(widths);
        if (widest > 0 && narrowest < -1e-6 * widest && depth < 6) {
            const auto positions_of = Spline::halves(positions);
            const auto widths_of = Spline::halves(widths);
            const float middle = 0.5f * (stretch.from + stretch.to);
            const bool has_first = add_segment(positions_of[0], widths_of[0], {stretch.from, middle}, depth + 1);
            return add_segment(positions_of[1], widths_of[1], {middle, stretch.to}, depth + 1) || has_first;
        }
        std::array<Curves::ControlPoint, 4> points;
        bool is_good = true;
        bool has_length = false;
        for (std::size_t i = 0; i < 4; ++i) {
            points[i] = {to_float(positions[i]), std::max(0.0f, static_cast<float>(widths[i]))};
            is_good &= is_usable(points[i].position) && points[i].radius <= largest_reach;
            has_length |= largest_coordinate(points[i].position - points[0].position) > 0;
        }
        if (!is_good || !has_length || !(static_cast<float>(widest) > 0))
            return false;
        curves.firsts.push_back(static_cast<std::uint32_t>(curves.points.size()));
        curves.points.insert(curves.points.end(), points.begin(), points.end());
        curves.stretches.push_back(stretch);
        return true;
    }

    const Spline &spline;
    Curves &curves;
};

} // namespace

std::optional<Curves> make_curves(const Parameters &parameters, const CallReport &report) {
    if (!check_arrays(parameters, report))
        return {};
    const std::vector<VtVector3> points = copied(parameters.vector3_array("points"));
    const Spline spline = make_spline(parameters, VtBSplineBasis(), report);
    const std::optional<std::vector<std::size_t>> counts = counts_of(parameters, points.size(), report);
    if (!counts)
        return {};
    const std::vector<double> radii = radii_of(parameters, points.size(), spline, *counts, report);

    Curves curves;
    curves.are_tubes = parameters.choice("kind") == "tube";
    Maker maker(spline, curves);
    std::size_t begin = 0, odd = 0, first_odd = 0;
    for (std::size_t i = 0; i < counts->size(); ++i) {
        const std::size_t count = (*counts)[i];
        if (spline.segments_of(count, false) == 0 && odd++ == 0)
            first_odd = i;
        maker.add_curve(points.data() + begin, radii.data() + begin, count);
        begin += count;
    }
    if (odd > 0)
        parameters.complain(parameters.is_given("counts") ? "counts" : "points",
                            joined({left_out(odd, "curve", first_odd), " (with the step ", std::to_string(spline.step),
                                    ", ", spline.fitting_counts(false), " points come out even)"}),
                            report);
    if (maker.unusable > 0)
        report.diagnostic(joined({"leaves out ", counted(static_cast<long>(maker.unusable), "segment"),
                                  " (expected finite coordinates up to 1e9, some length and a radius above 0)"}));
    if (curves.firsts.empty()) {
        if (odd == 0 && maker.unusable == 0)
            report.diagnostic("there is no curve; nothing will be seen");
        return {};
    }
    return curves;
}

float reach_of(const Curves &curves) {
    float reach = 0;
    for (const Curves::ControlPoint &p : curves.points)
        reach = std::max(reach, largest_coordinate(p.position) + p.radius);
    return reach;
}

SurfaceParameters parameters_at(const Curves &curves, std::uint32_t segment, Point2f on_segment, Vec3) {
    const auto [from, to] = curves.stretches[segment];
    const Curves::ControlPoint *p = &curves.points[curves.firsts[segment]];
    // The derivative of a Bezier curve: three times the quadratic one over the differences of its points.
    const float t = on_segment.u, s = 1 - t;
    const Vec3 slope = 3 * ((p[1].position - p[0].position) * (s * s) + (p[2].position - p[1].position) * (2 * s * t) +
                            (p[3].position - p[2].position) * (t * t));
    return {{from + (to - from) * t, 0.5f * (1 + on_segment.v)}, slope * (1 / (to - from))};
}

} // namespace vantor
