// Cone: cones, cut cones and cylinders, open or closed.
#include "libvantor/shapes/cone.h"

namespace vantor {

namespace {

std::optional<Cone> cone_between(const Parameters &parameters, double base, double tip, const CallReport &report) {
    const VtVector3 from = parameters.vector("from");
    const VtVector3 to = parameters.vector("to");
    const VtVector3 axis{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
    if (!(axis.Length() >= 1e-9)) {
        report.diagnostic("\"from\" and \"to\" are the same point (expected two ends of an axis); nothing of it will "
                          "be seen");
        return {};
    }
    const double greater = std::max(base, tip);
    return Cone{CanonicalMap(from, axis, greater), base / greater, tip / greater, parameters.is_on("caps")};
}

// A crossing that does not exist has a t that is NaN or infinite, for which every comparison is false.
void add_side(const Cone &cone, const CanonicalRay &ray, double start, Crossings &result) {
    // x^2 + z^2 = radius(y)^2 along the ray, from where it is near: a t^2 + 2 b t + c = 0.
    const Double3 o = ray.at(start);
    const Double3 d = ray.direction;
    const double slope = cone.tip - cone.base;
    const double radius = cone.radius_at(o.y);
    const double a = d.x * d.x + d.z * d.z - slope * slope * d.y * d.y;
    const double b = o.x * d.x + o.z * d.z - slope * d.y * radius;
    const double c = o.x * o.x + o.z * o.z - radius * radius;
    const double discriminant = b * b - a * c;
    if (!(discriminant >= 0))
        return;
    // Press et al., "Numerical Recipes", 3rd ed., 5.6: neither root cancels.
    const double q = -(b + std::copysign(std::sqrt(discriminant), b));
    for (const double t : {q / a, c / q}) {
        const Double3 p = o + d * t;
        // Between the ends both radii are 0 or more, so that the other half of the double cone does not count.
        if (p.y >= 0 && p.y <= 1)
            result.add({start + t, {p.x, -slope * cone.radius_at(p.y), p.z}, Cone::side});
    }
}

void add_cap(const CanonicalRay &ray, double y, double radius, const Crossing &at_cap, Crossings &result) {
    const double t = (y - ray.origin.y) / ray.direction.y;
    const Double3 p = ray.at(t);
    if (p.x * p.x + p.z * p.z <= radius * radius)
        result.add({t, at_cap.normal, at_cap.part});
}

} // namespace

std::optional<Cone> make_cone(const Parameters &parameters, const CallReport &report) {
    return cone_between(parameters, parameters.number("radius"), parameters.number("tip_radius"), report);
}

std::optional<Cone> make_cylinder(const Parameters &parameters, const CallReport &report) {
    const double radius = parameters.number("radius");
    return cone_between(parameters, radius, radius, report);
}

Crossings crossings(const Cone &cone, const CanonicalRay &ray) {
    Crossings result;
    add_side(cone, ray, ray.nearest_to({0, 0.5, 0}), result);
    if (cone.is_closed) {
        add_cap(ray, 0, cone.base, {0, {0, -1, 0}, Cone::base_cap}, result);
        if (cone.tip > 0)
            add_cap(ray, 1, cone.tip, {0, {0, 1, 0}, Cone::tip_cap}, result);
    }
    return result;
}

double support(const Cone &cone, Double3 along) {
    const double across = std::hypot(along.x, along.z);
    return std::max(cone.base * across, along.y + cone.tip * across);
}

Double3 on_surface(const Cone &cone, std::uint32_t part, Double3 p) {
    if (part == Cone::base_cap)
        return {p.x, 0, p.z};
    if (part == Cone::tip_cap)
        return {p.x, 1, p.z};
    const double from_axis = std::hypot(p.x, p.z);
    const double stretch = from_axis > 0 ? cone.radius_at(p.y) / from_axis : 0;
    return {p.x * stretch, p.y, p.z * stretch};
}

SurfaceParameters parameters_at(const Cone &cone, std::uint32_t part, Point2f, Vec3 point) {
    const Double3 p = cone.map.point_back(Double3(point));
    double v = p.y;
    Double3 along_v = away_from_axis(p) * (cone.tip - cone.base) + Double3{0, 1, 0};
    if (part != Cone::side) {
        const double radius = part == Cone::base_cap ? cone.base : cone.tip;
        v = 1 - std::hypot(p.x, p.z) / radius;
        along_v = away_from_axis(p) * -radius;
    }
    return {{turn_of(p), static_cast<float>(v)},
            to_float(cone.map.direction(along_turn(p))),
            to_float(cone.map.direction(along_v))};
}

} // namespace vantor
