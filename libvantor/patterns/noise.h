// Noise: a fractal sum of gradient noise.
#pragma once

#include "libvantor/patterns/source.h"

namespace vantor {

/// Gradient noise, -1 to 1: smooth, 0 wherever all coordinates are whole numbers, of mean 0. Perlin, "Improving Noise",
/// SIGGRAPH 2002. A hash stands for the paper's table of 256 permuted numbers, so that it repeats only after 65536.
float gradient_noise(Vec3 p);

struct Noise {
    ColorOrPattern a; ///< Where the noise is -1.
    ColorOrPattern b; ///< Where it is 1; mixed in between.
    PatternSpace space;
    Vec3 scale;       ///< How many features of the first octave lie on a length of 1.
    int octaves;      ///< At least 1.
    float lacunarity; ///< How much finer each octave is than the one before.
    float gain;       ///< How much weaker.

    /// The sum of the octaves over that of their weights, -1 to 1.
    float value(Vec3 p) const;
    Color evaluate(const PatternPoint &at) const;
};

} // namespace vantor
