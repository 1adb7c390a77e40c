// Points: spheres by the million, one at each of a cloud's positions.
#include "libvantor/shapes/points.h"

#include "libvantor/shapes/colors.h"
#include "libvantor/shapes/sphere.h"

namespace vantor {

namespace {

// What a sphere's radius may be, too.
bool is_usable_radius(double radius) { return radius >= 1e-9 && radius <= 1e9; }

bool is_usable(const Points::Ball &ball) { return is_usable(Vec3{ball[0], ball[1], ball[2]}); }

// The radii of all balls; false, after a diagnostic, if they are of no use. One that is missing or wrong says nothing
// of how large the others are meant to be.
bool set_radii(std::vector<Points::Ball> &balls, const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<double> &given = parameters.double_array("radii");
    if (static_cast<std::size_t>(given.Size()) != balls.size()) {
        parameters.complain("radii",
                            joined({"has ", counted(given.Size(), "element"), " (expected one for each of the ",
                                    std::to_string(balls.size()), " positions); nothing of the points will be seen"}),
                            report);
        return false;
    }
    std::size_t index = 0, unusable = 0, first_unusable = 0;
    given.ForEachBlock([&](const double *radii, VtLong count) {
        for (VtLong i = 0; i < count; ++i, ++index) {
            if (!is_usable_radius(radii[i]) && unusable++ == 0)
                first_unusable = index;
            balls[index][3] = static_cast<float>(radii[i]);
        }
    });
    if (unusable > 0)
        parameters.complain("radii",
                            joined({"has ", counted(static_cast<long>(unusable), "unusable element"),
                                    unusable == 1 ? ", " : ", the first of them ", std::to_string(first_unusable),
                                    " (expected radii from 1e-9 to 1e9); nothing of the points will be seen"}),
                            report);
    return unusable == 0;
}

// Where there is no point, there is no ball, and no colour.
void leave_out_unusable(Points &points, const Parameters &parameters, const CallReport &report) {
    const std::size_t all = points.balls.size();
    std::size_t kept = 0, first_unusable = all;
    for (std::size_t i = 0; i < all; ++i) {
        if (!is_usable(points.balls[i])) {
            first_unusable = std::min(first_unusable, i);
            continue;
        }
        points.balls[kept] = points.balls[i];
        if (!points.colors.empty())
            points.colors[kept] = points.colors[i];
        ++kept;
    }
    if (kept == all)
        return;
    points.balls.resize(kept);
    points.colors.resize(points.colors.empty() ? 0 : kept);
    parameters.complain(
        "positions",
        joined({left_out(all - kept, "point", first_unusable), " (expected finite coordinates up to 1e9)"}), report);
}

} // namespace

std::optional<Points> make_points(const Parameters &parameters, const CallReport &report) {
    const VtInstanceArray<VtVector3> &positions = parameters.vector3_array("positions");
    bool are_whole = check_storage(positions, "positions", parameters, report);
    if (parameters.is_given("radii"))
        are_whole &= check_storage(parameters.double_array("radii"), "radii", parameters, report);
    if (parameters.is_given("colors"))
        are_whole &= check_storage(parameters.vector3_array("colors"), "colors", parameters, report);
    if (!are_whole)
        return {};

    Points points;
    const auto radius = static_cast<float>(parameters.number("radius"));
    points.balls = copied(positions, [&](const VtVector3 &position) {
        const Vec3 p = to_float(position);
        return Points::Ball{p.x, p.y, p.z, radius};
    });
    if (points.balls.empty()) {
        parameters.complain("positions", "is empty; nothing of the points will be seen", report);
        return {};
    }
    if (parameters.is_given("radii")) {
        parameters.complain_beside("radii", {"radius"}, report);
        if (!set_radii(points.balls, parameters, report))
            return {};
    }
    if (parameters.is_given("colors"))
        points.colors = read_colors(points.balls.size(), "positions", parameters, report);
    leave_out_unusable(points, parameters, report);
    if (points.balls.empty())
        return {};
    return points;
}

float reach_of(const Points &points) {
    float reach = 0;
    for (const auto &[x, y, z, radius] : points.balls)
        reach = std::max(reach, largest_coordinate(Vec3{x, y, z}) + radius);
    return reach;
}

SurfaceParameters parameters_at(const Points &points, std::uint32_t ball, Point2f on_ball, Vec3 point) {
    const auto [x, y, z, radius] = points.balls[ball];
    return parameters_at(Sphere{{x, y, z}, radius}, 0, on_ball, point);
}

} // namespace vantor
