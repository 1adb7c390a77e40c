// Color: linear Rec. 709 light, and its way to 8 bits.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace vantor {

struct Color {
    float r = 0;
    float g = 0;
    float b = 0;
};

constexpr Color operator+(Color a, Color b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
constexpr Color operator*(Color a, Color b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }
constexpr Color operator*(Color a, float s) { return {a.r * s, a.g * s, a.b * s}; }
constexpr Color &operator+=(Color &a, Color b) { return a = a + b; }
constexpr Color &operator*=(Color &a, Color b) { return a = a * b; }
constexpr float largest_component(Color a) { return std::max({a.r, a.g, a.b}); }
constexpr bool is_black(Color a) { return largest_component(a) <= 0.0f; }
inline bool is_finite(Color a) { return std::isfinite(a.r + a.g + a.b); }

/// Rec. 709 luminance.
constexpr float luminance(Color a) { return 0.2126f * a.r + 0.7152f * a.g + 0.0722f * a.b; }

/// The sRGB value of a linear one (IEC 61966-2-1), 0 to 1.
inline float srgb_of_linear(float linear) {
    return linear <= 0.0031308f ? 12.92f * linear : 1.055f * std::pow(linear, 1 / 2.4f) - 0.055f;
}

/// Likewise, clipped to 0..255 and rounded.
inline std::uint8_t srgb_byte(float linear) {
    return static_cast<std::uint8_t>(std::lround(255.0f * srgb_of_linear(std::clamp(linear, 0.0f, 1.0f))));
}

/// The linear value of an sRGB one (IEC 61966-2-1), 0 to 1.
inline float linear_of_srgb(float encoded) {
    return encoded <= 0.04045f ? encoded / 12.92f : std::pow((encoded + 0.055f) / 1.055f, 2.4f);
}

/// The linear values of all sRGB bytes.
inline const std::array<float, 256> &linear_bytes() {
    static const std::array<float, 256> values = [] {
        std::array<float, 256> result;
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = linear_of_srgb(static_cast<float>(i) / 255);
        return result;
    }();
    return values;
}

} // namespace vantor
