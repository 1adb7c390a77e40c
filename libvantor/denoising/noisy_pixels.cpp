// Noisy pixels: what the denoiser compares, plane by plane.
#include "libvantor/denoising/noisy_pixels.h"

#include "libvantor/denoising/rows.h"

#include <cmath>

namespace vantor {

namespace {

// Below it, what a channel of the colour shows is rather gloss than albedo.
constexpr float least_divisor = 0.05f;

void resize(Planes &planes, std::size_t size) {
    for (Plane *plane : {&planes.x, &planes.y, &planes.z})
        plane->resize(size);
}

void set(Planes &planes, std::size_t i, float x, float y, float z) {
    planes.x[i] = x;
    planes.y[i] = y;
    planes.z[i] = z;
}

using RunLengths = std::array<float, run_count>;

// How many samples each run has.
RunLengths run_lengths(const SampleRange &samples) {
    RunLengths lengths{};
    for (int sample = samples.first; sample < samples.end; ++sample)
        ++lengths[static_cast<std::size_t>(run_of(sample, samples.in_all))];
    return lengths;
}

// Of a mean of `count` samples, from the sum of their squares and the square of their mean.
float variance_of_mean(float squares, float square_of_mean, float count) {
    return count < 2 ? 0 : std::max(0.0f, squares / count - square_of_mean) / (count - 1);
}

// Where pixels differ in how many samples they have, these are whole groups.
constexpr SampleRange one_group{0, samples_per_group, samples_per_group};

class Reader {
  public:
    Reader(const FrameBuffer &of, const SampleRange &samples, NoisyPixels &into)
        : frame(of), group(of.counts.empty() ? samples : one_group), lengths(run_lengths(group)), result(into) {
        for (const float length : lengths)
            runs += length > 0 ? 1.0f : 0.0f;
    }

    void read(std::size_t i) const {
        const GuideSums &sums = frame.guides[i];
        const float count = static_cast<float>(frame.count_of(i, group));
        Color color;
        for (const Color &of_run : sums.radiance)
            color += of_run;
        color = color * (1 / count);
        const Color albedo = sums.albedo * (1 / count);
        const Vec3 normal = sums.normal * (1 / count);
        const Color divisor{std::max(albedo.r, least_divisor), std::max(albedo.g, least_divisor),
                            std::max(albedo.b, least_divisor)};
        set(result.albedo, i, albedo.r, albedo.g, albedo.b);
        set(result.divisor, i, divisor.r, divisor.g, divisor.b);
        set(result.irradiance, i, color.r / divisor.r, color.g / divisor.g, color.b / divisor.b);
        set(result.normal, i, normal.x, normal.y, normal.z);
        result.variance[i] = variance(sums, color, divisor, count);
        const float grey = luminance(albedo);
        result.albedo_variance[i] = 3 * variance_of_mean(sums.albedo_squares, grey * grey, count);
        result.normal_variance[i] = variance_of_mean(sums.surfaces, dot(normal, normal), count);
        const float depth = sums.surfaces > 0 ? sums.depth / sums.surfaces : 0;
        result.depth[i] = depth;
        result.depth_variance[i] = variance_of_mean(sums.depth_squares, depth * depth, sums.surfaces);
    }

  private:
    // From how the means of the runs differ, each of which counts by its length.
    float variance(const GuideSums &sums, Color mean, Color divisor, float count) const {
        const float groups = count / static_cast<float>(group.count());
        float squares = 0;
        for (std::size_t run = 0; run < lengths.size(); ++run) {
            if (lengths[run] == 0)
                continue;
            const float length = lengths[run] * groups;
            const Color of_run = sums.radiance[run] * (1 / length);
            const float r = (of_run.r - mean.r) / divisor.r;
            const float g = (of_run.g - mean.g) / divisor.g;
            const float b = (of_run.b - mean.b) / divisor.b;
            squares += length * (r * r + g * g + b * b);
        }
        return squares / ((runs - 1) * count);
    }

    const FrameBuffer &frame;
    const SampleRange group;  // samples of which each pixel has one such group or more: all, or 16
    const RunLengths lengths; // in it
    float runs = 0;           // that have samples
    NoisyPixels &result;
};

// The smaller change to either side: the larger one may lead across an edge.
float change(float before, float here, float after) {
    return std::min(std::fabs(here - before), std::fabs(after - here));
}

} // namespace

NoisyPixels noisy_pixels(const FrameBuffer &frame, const SampleRange &samples, const Interrupt &interrupt) {
    NoisyPixels result;
    result.width = frame.window().width();
    result.height = frame.window().height();
    const auto size = static_cast<std::size_t>(frame.pixels());
    for (Planes *planes : {&result.divisor, &result.irradiance, &result.albedo, &result.normal})
        resize(*planes, size);
    for (Plane *plane : {&result.variance, &result.depth, &result.albedo_variance, &result.normal_variance,
                         &result.depth_variance, &result.slope})
        plane->resize(size);
    const Reader reader(frame, samples, result);
    for_each_row(result.height, interrupt, [&](int y) {
        for (int x = 0; x < result.width; ++x)
            reader.read(result.index(x, y));
    });
    Plane means(size);
    box_means(result.variance, result.width, result.height, variance_radius, interrupt, means);
    for_each_row(result.height, interrupt, [&](int y) {
        for (int x = 0; x < result.width; ++x) {
            const std::size_t i = result.index(x, y);
            // Where no bright sample came by chance, it could have.
            result.variance[i] = std::max(result.variance[i], means[i]);
            const auto depth = [&](int dx, int dy) {
                return result.depth[result.index(std::clamp(x + dx, 0, result.width - 1),
                                                 std::clamp(y + dy, 0, result.height - 1))];
            };
            const float across = change(depth(-1, 0), depth(0, 0), depth(1, 0));
            const float down = change(depth(0, -1), depth(0, 0), depth(0, 1));
            result.slope[i] = across * across + down * down;
        }
    });
    return result;
}

} // namespace vantor
