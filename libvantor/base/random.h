// Sample numbers: Owen-scrambled Sobol points as a pure function of pixel, sample and dimension.
#pragma once

#include "libvantor/base/bits.h"

#include <bit>
#include <cstdint>
#include <span>

namespace vantor {

/// A point of the unit square, each coordinate in [0, 1).
struct Point2f {
    float u = 0;
    float v = 0;
};

namespace sobol {

/// A hash of 32 bits with little bias. Mueller, "Prospecting for Hash Functions", the variant lowbias32.
constexpr std::uint32_t hash(std::uint32_t x) {
    x ^= x >> 16;
    x *= 0x7feb352du;
    x ^= x >> 15;
    x *= 0x846ca68bu;
    return x ^ (x >> 16);
}

/// Owen's nested uniform scrambling, as a hash in which every bit depends on the lower ones only; it therefore works on
/// reversed digits. Laine, Karras, "Stratified Sampling for Stochastic Transparency", 2011; constants by Vegdahl.
constexpr std::uint32_t scrambled_reversed(std::uint32_t x, std::uint32_t seed) {
    x ^= x * 0x3d20adeau;
    x += seed;
    x *= (seed >> 16) | 1u;
    x ^= x * 0x05526c56u;
    return x ^ (x * 0x53a22864u);
}

/// The second Sobol dimension with its digits reversed. Its generator matrix is Pascal's triangle modulo 2, which is a
/// product of five shifts (Lucas' theorem).
constexpr std::uint32_t second_dimension_reversed(std::uint32_t index) {
    index ^= (index >> 1) & 0x55555555u;
    index ^= (index >> 2) & 0x33333333u;
    index ^= (index >> 4) & 0x0f0f0f0fu;
    index ^= (index >> 8) & 0x00ff00ffu;
    return index ^ ((index >> 16) & 0x0000ffffu);
}

/// The top 24 bits as a float in [0, 1); all of them are exact.
constexpr float unit_float(std::uint32_t x) { return static_cast<float>(x >> 8) * 0x1p-24f; }

} // namespace sobol

/// The numbers of one sample of one pixel. There is no state, so neither the order of samples nor that of threads
/// matters, and a pixel has the same numbers in every window.
///
/// Every dimension has its own scrambled and shuffled copy of the two-dimensional Sobol sequence (Burley, "Practical
/// Hash-based Owen Scrambling", JCGT 2020). The pixels take consecutive stretches of it along a Z-order curve, so that
/// neighbouring pixels complete each other and the error looks like blue noise (Ahmed, Wonka, "Screen-Space Blue-Noise
/// Diffusion of Monte Carlo Sampling Error via Hierarchical Ordering of Pixels", 2020).
class Sampler {
  public:
    /// The first sample of the first pixel.
    Sampler() : Sampler(0, 0, 0, 1) {}

    /// 0 <= x, y < 65536; 0 <= sample < samples. Every seed has a scrambling of its own.
    Sampler(std::uint32_t x, std::uint32_t y, std::uint32_t sample, std::uint32_t samples, std::uint32_t seed = 0) {
        const std::uint64_t pixel = morton_code(x, y);
        const std::uint64_t index = (pixel << std::bit_width(samples - 1)) | sample;
        reversed_index = reversed_bits(static_cast<std::uint32_t>(index));
        // The sequence has 2^32 points. Pictures that need more start again, with another scrambling.
        const auto round = static_cast<std::uint32_t>(index >> 32);
        scrambling = (round << 12) ^ sobol::hash(seed);
    }

    /// See get_2d_of() for many at once.
    Point2f get_2d(std::uint32_t dimension) const {
        const std::uint32_t seed = seed_of(dimension);
        const std::uint32_t index = shuffled(seed);
        return {sobol::unit_float(first(index, seed)), sobol::unit_float(second(index, seed))};
    }

    /// For decisions that gain nothing from stratification: a hash, at a fraction of the cost.
    float unstratified(std::uint32_t dimension) const {
        return sobol::unit_float(sobol::hash(reversed_index ^ seed_of(dimension)));
    }

    /// With all 32 bits, for a choice among millions.
    double get_1d(std::uint32_t dimension) const {
        const std::uint32_t seed = seed_of(dimension);
        return first(shuffled(seed), seed) * 0x1p-32;
    }

  private:
    std::uint32_t seed_of(std::uint32_t dimension) const { return sobol::hash(scrambling ^ (dimension + 1)); }

    std::uint32_t shuffled(std::uint32_t seed) const {
        return reversed_bits(sobol::scrambled_reversed(reversed_index, seed));
    }

    // The first Sobol dimension is the index with its digits reversed, so reversed again it is the index itself.
    static std::uint32_t first(std::uint32_t index, std::uint32_t seed) {
        return reversed_bits(sobol::scrambled_reversed(index, seed * 0x9e3779b1u));
    }
    static std::uint32_t second(std::uint32_t index, std::uint32_t seed) {
        const std::uint32_t point = sobol::second_dimension_reversed(index);
        return reversed_bits(sobol::scrambled_reversed(point, seed * 0x85ebca77u));
    }

    std::uint32_t reversed_index;
    std::uint32_t scrambling;
};

/// The pairs of many samples in one dimension, in as many lanes as the processor has.
void get_2d_of(std::span<const Sampler> samplers, std::uint32_t dimension, std::span<Point2f> result);

} // namespace vantor
