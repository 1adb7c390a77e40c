// Spherical polygons: rectangles and triangles as a point sees them, sampled uniformly by solid angle.
#include "libvantor/lights/spherical_polygons.h"

namespace vantor {

namespace {

// acos(a) + acos(b), from 0 to 2 pi: the angle of the product of two complex numbers of unit length.
float sum_of_arc_cosines(float a, float b) {
    const auto sine = [](float cosine) { return std::sqrt(std::max(0.0f, 1 - cosine * cosine)); };
    const float sine_a = sine(a);
    const float sine_b = sine(b);
    const float angle = std::atan2(sine_a * b + a * sine_b, a * b - sine_a * sine_b);
    return angle < 0 ? angle + 2 * pi : angle;
}

} // namespace

SphericalRectangle::SphericalRectangle(Vec3 reference, Vec3 corner, Vec3 edge_u, Vec3 edge_v) {
    const float width = length(edge_u);
    const float height = length(edge_v);
    const Vec3 to_corner = corner - reference;
    const Vec3 x = edge_u * (1 / width);
    const Vec3 y = edge_v * (1 / height);
    x0 = dot(to_corner, x);
    x1 = x0 + width;
    y0 = dot(to_corner, y);
    y1 = y0 + height;
    z0 = -std::fabs(dot(to_corner, cross(x, y)));

    // The normals of the planes through the reference and the edges: (0, z0, -y0), (-z0, 0, x1) and so on, of unit
    // length. The angles between neighbours are those of the spherical rectangle.
    const auto z_of_normal = [&](float along) { return along / std::sqrt(along * along + z0 * z0); };
    b0 = z_of_normal(-y0);
    const float n1 = z_of_normal(x1);
    b1 = z_of_normal(y1);
    const float n3 = z_of_normal(-x0);
    k = 2 * pi - sum_of_arc_cosines(-b1 * n3, -n3 * b0);
    total = sum_of_arc_cosines(-b0 * n1, -n1 * b1) - k;
}

Point2f SphericalRectangle::sample(Point2f numbers) const {
    constexpr float below_one = 0x1.fffffep-1f;
    const float angle = numbers.u * total + k;
    const float f = (std::cos(angle) * b0 - b1) / std::sin(angle);
    const float cosine = std::clamp(std::copysign(1 / std::sqrt(f * f + b0 * b0), f), -below_one, below_one);
    const float x = std::clamp(-cosine * z0 / std::sqrt(1 - cosine * cosine), x0, x1);

    const float squared_distance = x * x + z0 * z0;
    const float h0 = y0 / std::sqrt(squared_distance + y0 * y0);
    const float h1 = y1 / std::sqrt(squared_distance + y1 * y1);
    const float h = h0 + numbers.v * (h1 - h0);
    const float rest = 1 - h * h;
    const float y = rest > 1e-6f ? std::clamp(h * std::sqrt(squared_distance / rest), y0, y1) : h > 0 ? y1 : y0;
    return {(x - x0) / (x1 - x0), (y - y0) / (y1 - y0)};
}

SphericalTriangle::Direction SphericalTriangle::direction(Direction d) {
    const double scale = 1 / std::sqrt(dot(d, d));
    return {d.x * scale, d.y * scale, d.z * scale};
}

SphericalTriangle::Direction SphericalTriangle::across(Direction d, Direction axis) {
    const double along = dot(d, axis);
    return direction({d.x - axis.x * along, d.y - axis.y * along, d.z - axis.z * along});
}

SphericalTriangle::Direction SphericalTriangle::turned(Direction axis, double cosine, Direction towards) {
    const double sine = std::sqrt(std::max(0.0, 1 - cosine * cosine));
    const Direction to = across(towards, axis);
    return {axis.x * cosine + to.x * sine, axis.y * cosine + to.y * sine, axis.z * cosine + to.z * sine};
}

SphericalTriangle::SphericalTriangle(Vec3 reference, Vec3 corner, Vec3 edge_u, Vec3 edge_v) {
    const auto widened = [](Vec3 from) { return Direction{from.x, from.y, from.z}; };
    to_corner = widened(corner - reference);
    u = widened(edge_u);
    v = widened(edge_v);
    a = direction(to_corner);
    b = direction({to_corner.x + u.x, to_corner.y + u.y, to_corner.z + u.z});
    c = direction({to_corner.x + v.x, to_corner.y + v.y, to_corner.z + v.z});
    total = 2 * std::atan2(std::fabs(dot(a, cross(b, c))), 1 + dot(a, b) + dot(b, c) + dot(c, a));
}

Point2f SphericalTriangle::sample(Point2f numbers) const {
    // The angle at a; the plane through a that leaves the wanted part of the area on the side of b, and where it meets
    // the side from a to c.
    const Direction normal_ab = direction(cross(a, b));
    const Direction normal_ca = direction(cross(c, a));
    const double cos_alpha = std::clamp(-dot(normal_ab, normal_ca), -1.0, 1.0);
    const double alpha = std::acos(cos_alpha);
    const double sin_alpha = std::sin(alpha);
    const double phi = static_cast<double>(numbers.u) * total - alpha;
    const double s = std::sin(phi);
    const double t = std::cos(phi);
    const double p = t - cos_alpha;
    const double q = s + sin_alpha * dot(a, b);
    const double cosine = ((q * t - p * s) * cos_alpha - q) / ((q * s + p * t) * sin_alpha);
    const Direction on_side = turned(a, std::clamp(cosine, -1.0, 1.0), c);

    // Then a point on the arc from b to there.
    const double height = 1 - static_cast<double>(numbers.v) * (1 - dot(on_side, b));
    const Direction w = turned(b, height, on_side);

    // Where that direction meets the plane. Möller, Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection", 1997.
    const Direction w_v = cross(w, v);
    const double inverse_divisor = 1 / dot(w_v, u);
    const double at_u = std::clamp(-dot(to_corner, w_v) * inverse_divisor, 0.0, 1.0);
    const double at_v = std::clamp(-dot(w, cross(to_corner, u)) * inverse_divisor, 0.0, 1.0);
    const double beyond = std::max(1.0, at_u + at_v);
    return {static_cast<float>(at_u / beyond), static_cast<float>(at_v / beyond)};
}

} // namespace vantor
