// Bits: reversed, interleaved, and taken apart again.
#pragma once

#include <cstdint>

namespace vantor {

/// The 32 bits in the opposite order.
constexpr std::uint32_t reversed_bits(std::uint32_t x) {
    x = __builtin_bswap32(x);
    x = ((x >> 4) & 0x0f0f0f0fu) | ((x & 0x0f0f0f0fu) << 4);
    x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
    return ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
}

/// Moves the bits of a 16-bit number to the even places.
constexpr std::uint32_t spread_to_even_bits(std::uint32_t x) {
    x = (x | (x << 8)) & 0x00ff00ffu;
    x = (x | (x << 4)) & 0x0f0f0f0fu;
    x = (x | (x << 2)) & 0x33333333u;
    return (x | (x << 1)) & 0x55555555u;
}

/// The inverse: the 16-bit number whose bits stand at the even places. Those at the odd places are ignored.
constexpr std::uint32_t even_bits(std::uint32_t x) {
    x &= 0x55555555u;
    x = (x | (x >> 1)) & 0x33333333u;
    x = (x | (x >> 2)) & 0x0f0f0f0fu;
    x = (x | (x >> 4)) & 0x00ff00ffu;
    return (x | (x >> 8)) & 0x0000ffffu;
}

/// Moves the bits of a 10-bit number to every third place.
constexpr std::uint32_t spread_to_third_bits(std::uint32_t x) {
    x = (x | (x << 16)) & 0x030000ffu;
    x = (x | (x << 8)) & 0x0300f00fu;
    x = (x | (x << 4)) & 0x030c30c3u;
    return (x | (x << 2)) & 0x09249249u;
}

/// The Morton code of 16-bit coordinates: where a point lies on the Z-order curve.
constexpr std::uint32_t morton_code(std::uint32_t x, std::uint32_t y) {
    return spread_to_even_bits(x) | (spread_to_even_bits(y) << 1);
}

/// The Morton code of 10-bit coordinates.
constexpr std::uint32_t morton_code(std::uint32_t x, std::uint32_t y, std::uint32_t z) {
    return spread_to_third_bits(x) | (spread_to_third_bits(y) << 1) | (spread_to_third_bits(z) << 2);
}

} // namespace vantor
