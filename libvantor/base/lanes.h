// Lanes: the values of several paths side by side, for loops that the compiler makes vector instructions of.
#pragma once

#include "libvantor/base/numbers.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// For functions that loop over lanes: compiled once for each of these instruction sets; the loader takes the best that
/// the machine has. Without fused multiply-add, all of them compute the same bits. Sanitizers do not start where the
/// loader chooses.
#if defined(__x86_64__) && !defined(VANTOR_SANITIZED)
#define VANTOR_VECTORIZED [[gnu::target_clones("avx2", "default")]]
#else
#define VANTOR_VECTORIZED
#endif

namespace vantor {

/// As many as Embree takes rays at once.
inline constexpr std::size_t lane_count = 16;

template <class T> using Lanes = std::array<T, lane_count>;

/// True or false, in the width of floats: what is compared in lanes stays in them.
using Mask = Lanes<std::int32_t>;

struct Vec3Lanes {
    Lanes<float> x{};
    Lanes<float> y{};
    Lanes<float> z{};

    Vec3 operator[](std::size_t lane) const { return {x[lane], y[lane], z[lane]}; }
    void set(std::size_t lane, Vec3 v) {
        x[lane] = v.x;
        y[lane] = v.y;
        z[lane] = v.z;
    }
};

struct ColorLanes {
    Lanes<float> r{};
    Lanes<float> g{};
    Lanes<float> b{};

    Color operator[](std::size_t lane) const { return {r[lane], g[lane], b[lane]}; }
    void set(std::size_t lane, Color c) {
        r[lane] = c.r;
        g[lane] = c.g;
        b[lane] = c.b;
    }
};

} // namespace vantor
