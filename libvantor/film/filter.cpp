// Filter: how the samples of a pixel are spread around its middle.
#include "libvantor/film/filter.h"

#include "libvantor/base/warp.h"

#include <numbers>

namespace vantor {

double FilterSampler::curve(Filter::Kind kind, double x) {
    if (std::fabs(x) > 1)
        return 0;
    const double turn = std::numbers::pi * x;
    switch (kind) {
    case Filter::Kind::Tent:
        return 1 - std::fabs(x);
    case Filter::Kind::Box:
        return 1;
    case Filter::Kind::Gaussian:
        return std::exp(-4.5 * x * x);
    case Filter::Kind::BlackmanHarris:
        break;
    }
    return 0.35875 + 0.48829 * std::cos(turn) + 0.14128 * std::cos(2 * turn) + 0.01168 * std::cos(3 * turn);
}

FilterSampler::FilterSampler(const Filter &filter) : kind(filter.kind), radius(0.5f * filter.width) {
    std::array<double, cells + 1> sums{};
    double before = curve(kind, -1);
    heights[0] = static_cast<float>(before);
    for (std::size_t i = 1; i <= cells; ++i) {
        const double here = curve(kind, 2.0 * static_cast<double>(i) / cells - 1);
        heights[i] = static_cast<float>(here);
        sums[i] = sums[i - 1] + 0.5 * (before + here);
        before = here;
    }
    for (std::size_t i = 0; i <= cells; ++i)
        cdf[i] = static_cast<float>(sums[i] / sums[cells]);
}

float FilterSampler::offset(float number) const {
    switch (kind) {
    case Filter::Kind::Tent:
        return warp::tent(number) * radius;
    case Filter::Kind::Box:
        return (2 * number - 1) * radius;
    default:
        return from_table(number) * radius;
    }
}

float FilterSampler::from_table(float number) const {
    const auto above = std::upper_bound(cdf.begin() + 1, cdf.end() - 1, number);
    const auto cell = static_cast<std::size_t>(above - cdf.begin()) - 1;
    const float of_cell = std::max(cdf[cell + 1] - cdf[cell], std::numeric_limits<float>::min());
    const float rest = std::clamp((number - cdf[cell]) / of_cell, 0.0f, 1.0f);
    // The integral of a straight line from a to b, a t + (b - a) t^2 / 2, is `rest` of (a + b) / 2: solved for t in the
    // form that stays exact where a and b are nearly the same.
    const float a = heights[cell];
    const float b = heights[cell + 1];
    const float divisor = a + std::sqrt(a * a + rest * (b * b - a * a));
    const float t = divisor > 0 ? rest * (a + b) / divisor : rest;
    constexpr float step = 2.0f / cells;
    return (static_cast<float>(cell) + std::min(t, 1.0f)) * step - 1;
}

} // namespace vantor
