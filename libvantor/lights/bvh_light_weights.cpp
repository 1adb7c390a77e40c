// BVH light weights: what the children of a node can bring to a point or a ray.
#include "libvantor/lights/bvh_light_weights.h"

#include "libvantor/base/rounding.h"
#include "libvantor/lights/cone.h"

namespace vantor {

namespace {

constexpr std::size_t width = BvhLightSampler::width;
constexpr float least_square = 1e-30f;         // of lengths, to divide by
constexpr float rounding = 64 * unit_roundoff; // the relative error of coordinates and distances

float in_order(const BvhLightSampler::Weights &weights) {
    float sum = 0;
    for (const float weight : weights)
        sum += weight;
    return sum;
}

// As std::max and std::min, but by value, which the compiler makes vector instructions of.
inline float larger(float a, float b) { return a > b ? a : b; }
inline float smaller(float a, float b) { return a < b ? a : b; }

struct Angle {
    float cosine;
    float sine;
};

// The difference of two angles from 0 to pi; 0 if the second is larger.
inline Angle difference(Angle a, Angle b) {
    const bool is_within = a.cosine >= b.cosine;
    return {is_within ? 1.0f : a.cosine * b.cosine + a.sine * b.sine,
            is_within ? 0.0f : a.sine * b.cosine - a.cosine * b.sine};
}

inline Angle with_cosine(float cosine) { return {cosine, std::sqrt(larger(0.0f, 1 - cosine * cosine))}; }

// The part of a ray that a child's lights may reach. From anywhere in a sphere around the box they shine into a cone
// that holds the sphere.
RayPart lit_part(const BvhLightSampler::Node &node, std::size_t lane, Vec3 center, float radius,
                 const LightSampleRay &reference) {
    const RayPart whole{0, reference.length};
    constexpr float rounding_of_cosines = 1e-6f;
    const Angle normals = with_cosine(node.cos_normals[lane]);
    const Angle emission = with_cosine(node.cos_emission[lane]);
    const float cosine = normals.cosine * emission.cosine - normals.sine * emission.sine - rounding_of_cosines;
    if (normals.cosine <= 0 || emission.cosine <= 0 || cosine <= 0)
        return whole;
    const float sine = with_cosine(cosine).sine;
    const Vec3 axis{node.axis_x[lane], node.axis_y[lane], node.axis_z[lane]};
    return SolidCone{center - axis * (radius / sine), axis, sine, cosine}.part_of(reference.ray, whole);
}

} // namespace

// The children's lights as one at the centre of the box; the least angles that anything in the sphere around the box
// may have with the axis and with the normal: Conty Estevez, Kulla, 2018, equation 3; Pharr, Jakob, Humphreys,
// "Physically Based Rendering", 4th ed., 12.6.3, LightBounds::Importance. Beside the sphere, the box itself tells what
// is behind a surface. Selections instead of branches, so that lanes are computed together.
#if defined(__x86_64__) && !defined(VANTOR_SANITIZED)
[[gnu::target_clones("avx2", "default")]]
#endif
float weigh(const BvhLightSampler::Node &node, const LightSampleContext &reference, BvhLightSampler::Weights &weights) {
    const Vec3 p = reference.point;
    const Vec3 n = reference.normal;
    const Vec3 n_sizes{std::fabs(n.x), std::fabs(n.y), std::fabs(n.z)};
    const float if_no_normal = dot(n, n) > 0 ? 0.0f : 1.0f; // all that is sent is received
    const float coordinates = largest_coordinate(p);
    constexpr float least_cosine = 0.01f;
    float result[width]; // no other memory, as the compiler knows

    for (std::size_t i = 0; i < width; ++i) {
        const Vec3 to_light{node.center_x[i] - p.x, node.center_y[i] - p.y, node.center_z[i] - p.z};
        const Vec3 half{node.half_x[i], node.half_y[i], node.half_z[i]};
        const Vec3 axis{node.axis_x[i], node.axis_y[i], node.axis_z[i]};
        const float intensity = node.intensity[i];
        const float square = larger(dot(to_light, to_light), least_square);
        const float squared_radius = dot(half, half);
        const float inverse_distance = 1 / std::sqrt(square);
        const float margin = rounding * (coordinates + square * inverse_distance);

        // Half the angle of the sphere around the box; all directions from inside of it.
        const float squared_sine = squared_radius * (inverse_distance * inverse_distance);
        const bool is_inside = squared_sine >= 1;
        const Angle sphere{is_inside ? -1.0f : std::sqrt(larger(0.0f, 1 - squared_sine)),
                           is_inside ? 0.0f : std::sqrt(squared_sine)};

        // The angle between the direction to the point and the nearest normal.
        const float before = -dot(axis, to_light);
        const Angle from_axis = with_cosine(smaller(larger(before * inverse_distance, -1.0f), 1.0f));
        const Angle leaving = difference(difference(from_axis, with_cosine(node.cos_normals[i])), sphere);
        const bool reaches = leaving.cosine + 2e-6f + 1e-3f * leaving.sine > node.cos_emission[i];
        // Normals that are all the same, of surfaces or of spots that shine forwards: nothing arrives behind the box.
        // Those of several lights are the same to two thousandths.
        const bool has_one_normal = node.cos_normals[i] > 0.999998f;
        const bool shines_forwards = node.cos_emission[i] >= 0;
        const bool is_flat = has_one_normal & shines_forwards;
        const float along_axis = std::fabs(axis.x) * half.x + std::fabs(axis.y) * half.y + std::fabs(axis.z) * half.z;
        const float slack = node.cos_normals[i] < 1 ? 2.1e-3f * (square * inverse_distance + along_axis) : 0.0f;
        const bool is_before = !is_flat | (before + along_axis > -margin - slack);

        const float above = dot(n, to_light);
        const Angle from_normal = with_cosine(smaller(larger(above * inverse_distance, -1.0f), 1.0f));
        const Angle arriving = difference(from_normal, sphere);
        const bool is_above = above + dot(n_sizes, half) > -margin;
        const float received = larger(larger(arriving.cosine, least_cosine), if_no_normal);

        const float sent = intensity * larger(leaving.cosine, least_cosine);
        const float weight = sent * received / larger(square, squared_radius);
        const bool is_possible = reaches & is_before & is_above & (intensity > 0);
        result[i] = is_possible ? smaller(larger(weight, least_light_weight), most_light_weight) : 0.0f;
    }
    std::ranges::copy(result, weights.begin());
    return in_order(weights);
}

// A point light of intensity I at the height h above the ray brings it the fluence I / h times the angle under which it
// sees the ray: the integral of I / (h^2 + t^2). Only the part of the ray counts that light may reach.
float weigh(const BvhLightSampler::Node &node, const LightSampleRay &reference, BvhLightSampler::Weights &weights) {
    const Ray &ray = reference.ray;
    for (std::size_t i = 0; i < width; ++i) {
        weights[i] = 0;
        if (!(node.intensity[i] > 0))
            continue;
        const Vec3 center{node.center_x[i], node.center_y[i], node.center_z[i]};
        const Vec3 to_light = center - ray.origin;
        const Vec3 half{node.half_x[i], node.half_y[i], node.half_z[i]};
        const float nearest = dot(to_light, ray.direction);
        const Vec3 across = to_light - ray.direction * nearest;
        const float radius = length(half);
        const float coordinates = largest_coordinate(ray.origin) + std::fabs(nearest);
        const float height = std::max({length(across), radius, rounding * coordinates, std::sqrt(least_square)});
        const RayPart part = lit_part(node, i, center, radius, reference);
        if (part.is_empty())
            continue;
        const float angle = std::atan2(part.to - nearest, height) + std::atan2(nearest - part.from, height);
        const float weight = node.intensity[i] * std::max(angle, 1e-6f) / height;
        weights[i] = std::min(std::max(weight, least_light_weight), most_light_weight);
    }
    return in_order(weights);
}

} // namespace vantor
