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

/// The weight of a sampled light, where a ray could have found it too, with that pdf per solid angle. A delta light is
/// found by none.
inline float mis_weight(bool is_delta, float pdf, float ray_pdf) {
    return is_delta ? 1.0f : power_heuristic(pdf, ray_pdf);
}

} // namespace vantor
