// Phase function: how a point of a medium scatters light.
#pragma once

#include "libvantor/base/warp.h"

#include <concepts>

namespace vantor {

/// Depends only on the angle between the directions of travel before and after. evaluate() takes its cosine and is, per
/// solid angle, the value and at the same time the pdf with which sample() draws the direction after.
template <class Function>
concept PhaseFunction = requires(const Function phase, float cosine, Vec3 before, Point2f u) {
    { phase.evaluate(cosine) } -> std::same_as<float>;
    { phase.sample(before, u) } -> std::same_as<Vec3>;
};

/// Henyey, Greenstein, "Diffuse Radiation in the Galaxy", 1941.
struct HenyeyGreenstein {
    float g = 0; ///< The mean cosine, between -1 and 1.

    float evaluate(float cosine) const {
        const float square = 1 + g * g - 2 * g * cosine;
        return (1 - g * g) / (4 * pi * square * std::sqrt(std::max(square, 1e-12f)));
    }

    Vec3 sample(Vec3 before, Point2f u) const {
        float cosine = 1 - 2 * u.u;
        if (std::fabs(g) > 1e-3f) {
            const float root = (1 - g * g) / (1 + g - 2 * g * u.u);
            cosine = std::clamp((1 + g * g - root * root) / (2 * g), -1.0f, 1.0f);
        }
        const float sine = std::sqrt(std::max(0.0f, 1 - cosine * cosine));
        const warp::SineCosine turn = warp::sine_cosine_of_turn(u.v);
        return Frame(before).world_from_local({sine * turn.cosine, sine * turn.sine, cosine});
    }
};
static_assert(PhaseFunction<HenyeyGreenstein>);

} // namespace vantor
