// Light bounds: what bounds several lights.
#include "libvantor/lights/light_bounds.h"

#include "libvantor/lights/cone.h"

namespace vantor {

namespace {

Vec3 least_of(Vec3 a, Vec3 b) { return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)}; }
Vec3 most_of(Vec3 a, Vec3 b) { return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)}; }

// The cosine of the sum of two angles from 0 to pi; -1 if that is more than pi. The first is given by one minus its
// cosine, as it may be narrow.
float cosine_of_sum(float one_minus_cos_a, float cos_b) {
    const float cos_a = 1 - one_minus_cos_a;
    if (cos_a + cos_b <= 0)
        return -1;
    const float sin_a = std::sqrt(std::max(0.0f, one_minus_cos_a * (2 - one_minus_cos_a)));
    const float sin_b = std::sqrt(std::max(0.0f, 1 - cos_b * cos_b));
    return cos_a * cos_b - sin_a * sin_b;
}

} // namespace

LightBounds united(std::span<const LightBounds> parts) {
    LightBounds result = parts.front();
    if (parts.size() == 1)
        return result;
    Vec3 low = result.center - result.half_extent;
    Vec3 high = result.center + result.half_extent;
    Vec3 axes = result.axis;
    for (const LightBounds &part : parts.subspan(1)) {
        low = least_of(low, part.center - part.half_extent);
        high = most_of(high, part.center + part.half_extent);
        axes = axes + part.axis;
        result.cos_emission = std::min(result.cos_emission, part.cos_emission);
        result.intensity += part.intensity;
    }
    constexpr float outwards = 0.500001f;
    result.center = (low + high) * 0.5f;
    result.half_extent = (high - low) * outwards;

    // The cone around the mean of the axes. It may be wider than needed, and takes a few products to find.
    result.axis = direction_of(axes, {0, 0, 1});
    constexpr float rounding_of_cosines = 4e-7f;
    result.cos_normals = 1;
    for (const LightBounds &part : parts)
        result.cos_normals = std::min(result.cos_normals,
                                      cosine_of_sum(one_minus_cos_between(result.axis, part.axis), part.cos_normals));
    result.cos_normals = std::max(-1.0f, result.cos_normals - rounding_of_cosines);
    return result;
}

} // namespace vantor
