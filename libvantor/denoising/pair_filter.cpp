// Pair filter: pixels that cannot be told apart share what they have, in pairs.
#include "libvantor/denoising/pair_filter.h"

#include "libvantor/base/lanes.h"
#include "libvantor/denoising/rows.h"

#include <cmath>
#include <memory>

namespace vantor {

namespace {

// From 0 to 1 in 16 bits, rounded down: there are many, and it is their memory that takes the time.
using KeptWeight = std::uint16_t;
constexpr float kept_one = 65535;

// Some of a picture's rows: begin <= y < end.
struct Rows {
    int begin;
    int end;
};

Rows widened(const Rows &rows, int by, int height) {
    return {std::max(0, rows.begin - by), std::min(height, rows.end + by)};
}

// Pairs of a row's pixels and others: the first pixel of each, how many there are, and their weights.
struct RowPairs {
    std::size_t first;
    std::size_t other;
    std::size_t count;
    const KeptWeight *weights;
};

VANTOR_VECTORIZED void keep(const float *weights, std::size_t count, KeptWeight *__restrict kept) {
    for (std::size_t k = 0; k < count; ++k)
        kept[k] = static_cast<KeptWeight>(static_cast<int>(weights[k] * kept_one));
}

// Adds to the sums of pixels the weights of pairs, times the factors of both pixels.
VANTOR_VECTORIZED void add_products(const KeptWeight *weights, const float *factors, const float *other_factors,
                                    std::size_t count, float *__restrict sums) {
    for (std::size_t k = 0; k < count; ++k)
        sums[k] += static_cast<float>(weights[k]) * (1 / kept_one) * (factors[k] * other_factors[k]);
}

VANTOR_VECTORIZED void scale(const KeptWeight *weights, const float *factors, const float *other_factors,
                             const float *limits, const float *other_limits, std::size_t count,
                             float *__restrict scaled) {
    for (std::size_t k = 0; k < count; ++k)
        scaled[k] = static_cast<float>(weights[k]) * (1 / kept_one) *
                    (factors[k] * other_factors[k] * std::min(limits[k], other_limits[k]));
}

// In radiance, as much as either pixel takes of the other: by the smaller divisor.
VANTOR_VECTORIZED void add_gains(const float *weights, const float *divisor, const float *other_divisor,
                                 const float *value, const float *other_value, std::size_t count,
                                 float *__restrict gain) {
    for (std::size_t k = 0; k < count; ++k)
        gain[k] += weights[k] * std::min(divisor[k], other_divisor[k]) * (other_value[k] - value[k]);
}

// The weights of all pairs of the pixels of some rows, each of which is computed and kept once: by that pixel of the
// two which comes first.
class KeptWeights {
  public:
    KeptWeights(const NoisyPixels &of, const Rows &rows, const Interrupt &interrupt)
        : pixels(of), kept{std::max(0, rows.begin - pair_radius), rows.end},
          weights(std::make_unique_for_overwrite<KeptWeight[]>(static_cast<std::size_t>(kept.end - kept.begin) *
                                                               row_size())) {
        for_each_row(kept.end - kept.begin, interrupt, [&](int row) {
            const int y = kept.begin + row;
            Plane found(static_cast<std::size_t>(pixels.width));
            for (std::size_t i = 0; i < forward.size(); ++i) {
                const auto [x0, x1] = columns(forward[i]);
                if (y + forward[i].y >= pixels.height || x0 >= x1)
                    continue;
                pair_weights(pixels, y, x0, x1, forward[i], found.data());
                keep(found.data(), static_cast<std::size_t>(x1 - x0), of_offset(y, i) + x0);
            }
        });
    }

    // Calls use(pairs) for the pairs of each pixel of a row, in the order of the offsets; a pair comes from both sides.
    template <class Use> void for_each_pair(int y, Use use) const {
        const std::span<const Offset> all = offsets();
        for (std::size_t i = 0; i < all.size(); ++i) {
            const Offset &offset = all[i];
            const auto [x0, x1] = columns(offset);
            const int other_y = y + offset.y;
            if (other_y < 0 || other_y >= pixels.height || x0 >= x1)
                continue;
            // The offsets are the same ones backwards, with the other sign.
            const bool is_forward = i >= forward.size();
            const KeptWeight *const of_pairs = is_forward ? of_offset(y, i - forward.size()) + x0
                                                          : of_offset(other_y, forward.size() - 1 - i) + x0 + offset.x;
            use(RowPairs{pixels.index(x0, y), pixels.index(x0 + offset.x, other_y), static_cast<std::size_t>(x1 - x0),
                         of_pairs});
        }
    }

  private:
    std::size_t row_size() const { return forward.size() * static_cast<std::size_t>(pixels.width); }
    KeptWeight *of_offset(int y, std::size_t i) const {
        return weights.get() + static_cast<std::size_t>(y - kept.begin) * row_size() +
               i * static_cast<std::size_t>(pixels.width);
    }
    // The pixels of a row that have another one there.
    std::pair<int, int> columns(const Offset &offset) const {
        return {std::max(0, -offset.x), std::min(pixels.width, pixels.width - offset.x)};
    }

    const NoisyPixels &pixels;
    const std::span<const Offset> forward = offsets().subspan(offsets().size() / 2);
    const Rows kept;
    const std::unique_ptr<KeptWeight[]> weights;
};

class PairFilter {
  public:
    // The pixels have to outlive it.
    PairFilter(const NoisyPixels &of, const Interrupt &by)
        : pixels(of), interrupt(by), sums(of.depth.size()), factors(sums.size()), limits(sums.size()) {}

    // Of these rows' pixels.
    void find_gains(const Rows &rows, std::span<const Planes *const> irradiances, std::span<Planes> gains) {
        const KeptWeights weights(pixels, widened(rows, (factor_iterations + 1) * pair_radius, pixels.height),
                                  interrupt);
        std::ranges::fill(factors, 1.0f);
        for (int left = factor_iterations; left >= 0; --left) {
            const Rows summed = widened(rows, (left + 1) * pair_radius, pixels.height);
            add_weights(weights, summed);
            for (std::size_t pixel = pixels.index(0, summed.begin); pixel < pixels.index(0, summed.end); ++pixel)
                if (left > 0)
                    factors[pixel] /= std::sqrt(sums[pixel]);
                else
                    limits[pixel] = std::min(1.0f, 1 / sums[pixel]);
        }
        for_each_row(rows.end - rows.begin, interrupt, [&](int row) {
            Plane scaled(static_cast<std::size_t>(pixels.width));
            weights.for_each_pair(rows.begin + row, [&](const RowPairs &pairs) {
                scale(pairs.weights, &factors[pairs.first], &factors[pairs.other], &limits[pairs.first],
                      &limits[pairs.other], pairs.count, scaled.data());
                for (std::size_t i = 0; i < irradiances.size(); ++i) {
                    add(scaled, pairs, pixels.divisor.x, irradiances[i]->x, gains[i].x);
                    add(scaled, pairs, pixels.divisor.y, irradiances[i]->y, gains[i].y);
                    add(scaled, pairs, pixels.divisor.z, irradiances[i]->z, gains[i].z);
                }
            });
        });
    }

  private:
    // Of each pixel, with itself, by the present factors.
    void add_weights(const KeptWeights &weights, const Rows &rows) {
        for_each_row(rows.end - rows.begin, interrupt, [&](int row) {
            const int y = rows.begin + row;
            for (std::size_t pixel = pixels.index(0, y); pixel < pixels.index(0, y + 1); ++pixel)
                sums[pixel] = factors[pixel] * factors[pixel];
            weights.for_each_pair(y, [&](const RowPairs &pairs) {
                add_products(pairs.weights, &factors[pairs.first], &factors[pairs.other], pairs.count,
                             &sums[pairs.first]);
            });
        });
    }

    static void add(const Plane &weights, const RowPairs &pairs, const Plane &divisor, const Plane &irradiance,
                    Plane &gain) {
        add_gains(weights.data(), &divisor[pairs.first], &divisor[pairs.other], &irradiance[pairs.first],
                  &irradiance[pairs.other], pairs.count, &gain[pairs.first]);
    }

    const NoisyPixels &pixels;
    const Interrupt &interrupt;
    Plane sums;
    Plane factors; // A pair's weight is multiplied by those of both pixels,
    Plane limits;  // and by the smaller of these, so that no pixel takes more from others than it has.
};

} // namespace

std::vector<Planes> pair_gains(const NoisyPixels &pixels, std::span<const Planes *const> irradiances, int rows_at_once,
                               const Interrupt &interrupt) {
    const Plane none(pixels.depth.size());
    std::vector<Planes> gains(irradiances.size(), Planes{none, none, none});
    PairFilter filter(pixels, interrupt);
    const int parts = (pixels.height + rows_at_once - 1) / rows_at_once;
    for (int part = 0; part < parts; ++part)
        filter.find_gains({pixels.height * part / parts, pixels.height * (part + 1) / parts}, irradiances, gains);
    return gains;
}

int rows_at_once(int width) {
    constexpr int least = 64;
    constexpr std::size_t most_bytes = std::size_t{128} << 20;
    // Beside the rows themselves.
    constexpr int kept_around = (2 * (factor_iterations + 1) + 1) * pair_radius;
    const std::size_t bytes_of_row = offsets().size() / 2 * static_cast<std::size_t>(width) * sizeof(KeptWeight);
    return std::max(least, static_cast<int>(most_bytes / bytes_of_row) - kept_around);
}

} // namespace vantor
