// Pair weights: how alike two pixels are.
#include "libvantor/denoising/pair_weights.h"

namespace vantor {

namespace {

// Found by trials: where the weights are 0.
constexpr float most_deviations = 2.3f; // between irradiances, in standard deviations
constexpr float most_albedo = 0.25f;    // of each channel
constexpr float most_normal = 0.25f;    // about 14 degrees
constexpr float most_depth = 0.05f;     // of the depth itself,
constexpr float most_slopes = 4;        // and the square of how many times what a plane surface would have
constexpr float guide_variances = 2;    // as much of a guide's difference is noise
constexpr float least_divisor = 1e-20f; // 0 over 0 is 0: pixels without noise that are the same

constexpr float square(float x) { return x * x; }

std::vector<Offset> offsets_within(int radius) {
    std::vector<Offset> result;
    for (int y = -radius; y <= radius; ++y)
        for (int x = -radius; x <= radius; ++x)
            if ((x != 0 || y != 0) && x * x + y * y <= radius * radius + 1)
                result.push_back({x, y});
    return result;
}

// The values of a stretch of pixels.
struct Stretch {
    struct Vectors {
        const float *x;
        const float *y;
        const float *z;

        Vectors(const Planes &planes, std::size_t first)
            : x(planes.x.data() + first), y(planes.y.data() + first), z(planes.z.data() + first) {}
    };

    Vectors irradiance;
    Vectors albedo;
    Vectors normal;
    const float *variance;
    const float *albedo_variance;
    const float *normal_variance;
    const float *depth;
    const float *depth_variance;
    const float *slope;

    Stretch(const NoisyPixels &of, std::size_t first)
        : irradiance(of.irradiance, first), albedo(of.albedo, first), normal(of.normal, first),
          variance(of.variance.data() + first), albedo_variance(of.albedo_variance.data() + first),
          normal_variance(of.normal_variance.data() + first), depth(of.depth.data() + first),
          depth_variance(of.depth_variance.data() + first), slope(of.slope.data() + first) {}
};

[[gnu::always_inline]] inline float square_distance(const Stretch::Vectors &a, const Stretch::Vectors &b,
                                                    std::size_t i) {
    return square(a.x[i] - b.x[i]) + square(a.y[i] - b.y[i]) + square(a.z[i] - b.z[i]);
}

// Without what is noise.
[[gnu::always_inline]] inline float excess(float square_distance, float variances) {
    return std::max(0.0f, square_distance - guide_variances * variances);
}

// Compiled for several processors, as in base/random.cpp. What is done is the same, value by value, in all of them.
#if defined(__x86_64__) && !defined(VANTOR_SANITIZED)
[[gnu::target_clones("arch=skylake-avx512", "avx2", "default")]]
#endif
void compare(const Stretch &a, const Stretch &b, std::size_t count, float square_of_offset,
             float *__restrict weights) {
    constexpr float by_deviations = 1 / square(most_deviations);
    constexpr float by_albedo = 1 / (3 * square(most_albedo));
    constexpr float by_normal = 1 / square(most_normal);
    constexpr float by_depth = square(0.5f * most_depth);
    for (std::size_t i = 0; i < count; ++i) {
        const float unlike = by_deviations * square_distance(a.irradiance, b.irradiance, i) /
                             (a.variance[i] + b.variance[i] + least_divisor);
        const float albedo =
            by_albedo * excess(square_distance(a.albedo, b.albedo, i), a.albedo_variance[i] + b.albedo_variance[i]);
        const float normal =
            by_normal * excess(square_distance(a.normal, b.normal, i), a.normal_variance[i] + b.normal_variance[i]);
        const float depth = excess(square(a.depth[i] - b.depth[i]), a.depth_variance[i] + b.depth_variance[i]) /
                            (by_depth * square(a.depth[i] + b.depth[i]) +
                             most_slopes * square_of_offset * std::max(a.slope[i], b.slope[i]) + least_divisor);
        weights[i] = square(std::max(0.0f, 1 - unlike)) * square(std::max(0.0f, 1 - (albedo + normal + depth)));
    }
}

} // namespace

std::span<const Offset> offsets() {
    static const std::vector<Offset> all = offsets_within(pair_radius);
    return all;
}

void pair_weights(const NoisyPixels &pixels, int y, int x0, int x1, const Offset &offset, float *weights) {
    compare({pixels, pixels.index(x0, y)}, {pixels, pixels.index(x0 + offset.x, y + offset.y)},
            static_cast<std::size_t>(x1 - x0), static_cast<float>(offset.x * offset.x + offset.y * offset.y), weights);
}

} // namespace vantor
