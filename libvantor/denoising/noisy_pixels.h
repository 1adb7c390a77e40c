// Noisy pixels: what the denoiser compares, plane by plane.
#pragma once

#include "libvantor/base/tiles.h"
#include "libvantor/film/frame_buffer.h"

#include <vector>

namespace vantor {

/// A value of every pixel, row after row.
using Plane = std::vector<float>;

/// Three planes of a colour or a vector.
struct Planes {
    Plane x;
    Plane y;
    Plane z;
};

/// The pixels of a frame with guides. Planes are apart from each other so that neighbours in a row are compared at
/// once.
struct NoisyPixels {
    int width = 0;
    int height = 0;
    Planes divisor;    ///< The albedo, but not so small that it would amplify noise.
    Planes irradiance; ///< The colour without emission, over the divisor: without textures.
    Plane variance;    ///< Of the irradiance's error, over its three channels together.
    Planes albedo;
    Planes normal;         ///< Shorter than 1 where the pixel has several, or sees no surface beside one.
    Plane depth;           ///< Of the surfaces.
    Plane albedo_variance; ///< Of the errors of the means, over three channels together.
    Plane normal_variance;
    Plane depth_variance;
    Plane slope; ///< The square of the depth's change from pixel to pixel.

    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
};

/// The frame has guides, of 2 samples or more. Throws Interrupted.
NoisyPixels noisy_pixels(const FrameBuffer &frame, const SampleRange &samples, const Interrupt &interrupt);

/// How far around a pixel others make a difference to its values here.
inline constexpr int variance_radius = 3;

} // namespace vantor
