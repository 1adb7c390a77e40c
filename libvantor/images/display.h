// Display: from linear values to the 8 or 16 bits of a picture that is looked at.
#pragma once

#include "libvantor/base/color.h"

#include <limits>

namespace vantor {

enum class Display {
    Srgb,   ///< The curve of IEC 61966-2-1; whatever is brighter than 1 is clipped.
    Linear, ///< The value itself, for those that are no light.
    Filmic, ///< Bright values are compressed as film does, before the sRGB curve.
};

/// A fit of the film-like response of the Academy Color Encoding System. Narkowicz, "ACES Filmic Tone Mapping Curve",
/// 2015. From 0 or more to 0 to 1.03: what would be infinitely bright is a little more than white.
inline float filmic(float linear) {
    // Beyond, the curve is flat, and squares would overflow.
    const float x = std::clamp(linear, 0.0f, 1e6f);
    return x * (2.51f * x + 0.03f) / (x * (2.43f * x + 0.59f) + 0.14f);
}

/// From 0 to 1, as the display wants it.
inline float displayed(float linear, Display display) {
    if (display == Display::Linear)
        return std::clamp(linear, 0.0f, 1.0f);
    return srgb_of_linear(std::clamp(display == Display::Filmic ? filmic(linear) : linear, 0.0f, 1.0f));
}

/// 0 to the largest integer, 255 or 65535; rounded.
template <class Integer = std::uint8_t> Integer shown(float linear, Display display) {
    constexpr auto largest = static_cast<float>(std::numeric_limits<Integer>::max());
    return static_cast<Integer>(std::lround(largest * displayed(linear, display)));
}

} // namespace vantor
