// Torus: a ring.
#include "libvantor/shapes/torus.h"

namespace vantor {

namespace {

// s^4 + c2 s^2 + c1 s + c0.
struct Quartic {
    double c2;
    double c1;
    double c0;

    double value(double s) const { return ((s * s + c2) * s + c1) * s + c0; }
    double slope(double s) const { return (4 * s * s + 2 * c2) * s + c1; }
    double curvature(double s) const { return 12 * s * s + 2 * c2; }
};

// Where a function that is monotone from `low` to `high` is zero; its signs at the two ends differ. Newton's method,
// kept inside of the shrinking interval by bisection: Press et al., "Numerical Recipes", 3rd ed., 9.4.
template <class Function, class Slope>
double bracketed_root(double low, double high, bool rises, Function function, Slope slope) {
    double s = 0.5 * (low + high);
    for (int i = 0; i < 80 && high - low > 1e-15; ++i) {
        const double value = function(s);
        ((value < 0) == rises ? low : high) = s;
        const double next = s - value / slope(s);
        const bool is_inside = next > low && next < high;
        const double step = is_inside ? std::fabs(next - s) : 1;
        s = is_inside ? next : 0.5 * (low + high);
        if (step < 1e-14)
            break;
    }
    return s;
}

// The places where a function is zero, given such that it is monotone between neighbours.
template <std::size_t size> struct Places {
    std::array<double, size> s{};
    std::size_t count = 0;

    void add(double place) { s[count++] = place; }
};

// All zeros of a function of one sign change between each two neighbours of `stops`. Every interval is looked at, so
// that no pair of zeros is missed, however near they are. After Yuksel, "High-Performance Polynomial Root Finding for
// Graphics", 2022.
template <std::size_t size, class Function, class Slope>
Places<size> zeros_between(const Places<size> &stops, Function function, Slope slope) {
    Places<size> zeros;
    for (std::size_t i = 0; i + 1 < stops.count; ++i) {
        const bool is_below = function(stops.s[i]) < 0;
        const bool ends_below = function(stops.s[i + 1]) < 0;
        if (is_below != ends_below)
            zeros.add(bracketed_root(stops.s[i], stops.s[i + 1], is_below, function, slope));
    }
    return zeros;
}

// The zeros as stops between the two ends.
template <std::size_t size> Places<size> with_ends(const Places<size> &zeros, double end) {
    Places<size> stops;
    stops.add(-end);
    for (std::size_t i = 0; i < zeros.count; ++i)
        stops.add(zeros.s[i]);
    stops.add(end);
    return stops;
}

// From -end to end.
Places<5> zeros_of(const Quartic &quartic, double end) {
    const auto value = [&](double s) { return quartic.value(s); };
    const auto slope = [&](double s) { return quartic.slope(s); };
    const auto curvature = [&](double s) { return quartic.curvature(s); };
    Places<5> turns;
    if (const double bend = std::sqrt(std::max(0.0, -quartic.c2 / 6)); bend > 0 && bend < end) {
        turns.add(-bend);
        turns.add(bend);
    }
    const Places<5> extremes = zeros_between(with_ends(turns, end), slope, curvature);
    return zeros_between(with_ends(extremes, end), value, slope);
}

// The squared distance to the tube's middle, and how it grows along a direction.
struct TubeDistance {
    double square;
    double slope;
};
TubeDistance tube_distance(Double3 p, Double3 direction) {
    const double from_axis = std::hypot(p.x, p.z);
    const double beyond = from_axis - 1;
    return {beyond * beyond + p.y * p.y,
            2 * (beyond * (p.x * direction.x + p.z * direction.z) / from_axis + p.y * direction.y)};
}

} // namespace

std::optional<Torus> make_torus(const Parameters &parameters, const CallReport &report) {
    const double major = parameters.number("major_radius");
    const double minor = parameters.number("minor_radius");
    // A thinner tube has too few of the digits of its distance from the axis.
    if (!(minor <= major && minor >= 1e-6 * major)) {
        report.diagnostic(
            "\"minor_radius\" is out of range: expected a millionth of \"major_radius\" to all of it; nothing of "
            "the torus will be seen");
        return {};
    }
    VtVector3 axis = parameters.vector("axis");
    axis.Normalize();
    axis = {axis[0] * major, axis[1] * major, axis[2] * major};
    return Torus{CanonicalMap(parameters.vector("center"), axis, major), minor / major};
}

Crossings crossings(const Torus &torus, const CanonicalRay &ray) {
    Crossings result;
    // From where the ray is nearest to the centre, with unit direction.
    const double start = ray.nearest_to({});
    const Double3 o = ray.at(start);
    const double unit = 1 / std::sqrt(dot(ray.direction, ray.direction));
    const Double3 d = ray.direction * unit;
    const double nearest = dot(o, o);
    const double outside = 1.0001 * (1 + torus.tube);
    const double squared_end = outside * outside - nearest;
    if (!(squared_end > 0))
        return result;

    // (|p|^2 + 1 - tube^2)^2 = 4 (x^2 + z^2), with |p|^2 = |o|^2 + s^2.
    const double g = nearest + 1 - torus.tube * torus.tube;
    const Quartic quartic{2 * g - 4 * (d.x * d.x + d.z * d.z), -8 * (o.x * d.x + o.z * d.z),
                          g * g - 4 * (o.x * o.x + o.z * o.z)};
    const Places<5> zeros = zeros_of(quartic, std::sqrt(squared_end));
    for (std::size_t i = 0; i < zeros.count; ++i) {
        // In a thin tube the polynomial has lost digits that the distance still has.
        double s = zeros.s[i];
        const TubeDistance distance = tube_distance(o + d * s, d);
        const double step = (distance.square - torus.tube * torus.tube) / distance.slope;
        if (std::fabs(step) < 1e-6 * torus.tube)
            s -= step;
        const Double3 p = o + d * s;
        const double inwards = 1 - 1 / std::hypot(p.x, p.z);
        result.add({start + s * unit, {p.x * inwards, p.y, p.z * inwards}, 0});
    }
    return result;
}

double support(const Torus &torus, Double3 along) {
    return std::hypot(along.x, along.z) + torus.tube * std::sqrt(dot(along, along));
}

Double3 on_surface(const Torus &torus, std::uint32_t, Double3 p) {
    const Double3 middle = away_from_axis(p);
    const Double3 from_middle = p - middle;
    return middle + from_middle * (torus.tube / std::sqrt(dot(from_middle, from_middle)));
}

SurfaceParameters parameters_at(const Torus &torus, std::uint32_t, Point2f, Vec3 point) {
    const Double3 p = torus.map.point_back(Double3(point));
    const auto around_tube = static_cast<float>(std::atan2(p.y, std::hypot(p.x, p.z) - 1)) * (0.5f * inverse_pi);
    const Double3 along_tube = away_from_axis(p) * -p.y + Double3{0, std::hypot(p.x, p.z) - 1, 0};
    return {{turn_of(p), around_tube < 0 ? around_tube + 1 : around_tube},
            to_float(torus.map.direction(along_turn(p))),
            to_float(torus.map.direction(along_tube * (2 * static_cast<double>(pi))))};
}

} // namespace vantor
