// Multiple importance sampling: one estimate from two ways of sampling. Veach, "Robust Monte Carlo Methods for Light
// Transport Simulation", 1997, chapter 9.
#pragma once

namespace vantor {

/// The weight of a sample drawn with one pdf where another could have drawn it too: the power heuristic with exponent
/// 2, Veach 9.2.4. Squares of pdfs may overflow, which a ratio survives. What is drawn with pdf 0 is left to the other.
inline float power_heuristic(float pdf, float other_pdf) {
    if (!(pdf > 0))
        return 0;
    const float ratio = other_pdf / pdf;
    return 1 / (1 + ratio * ratio);
}

} // namespace vantor
