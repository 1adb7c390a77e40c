// Power light sampler: chooses lights by their power, the same at every point.
#pragma once

#include "libvantor/lights/light_sampler.h"

#include <algorithm>
#include <span>
#include <vector>

namespace vantor {

/// Three quarters of the choice go by power, the rest is the same for each group of lights that has any: the power of
/// an infinite light grows with the scene, and must not leave a lamp in its middle without samples.
class PowerLightSampler {
  public:
    /// The powers are 0 or more; those that are not finite count as 0. The groups divide the lights, as a light that
    /// was described as one may consist of millions: the index of the first light of each, in order, and at the end the
    /// number of lights. A group may be empty.
    PowerLightSampler(std::span<const float> powers, std::span<const std::size_t> groups);

    LightChoice sample(const LightSampleContext &reference, double u) const {
        if (cdf.size() == 2)
            return {0, pmf(reference, 0)};
        // The first sum above the number. Lights without power add nothing and are never found.
        const auto above = std::upper_bound(cdf.begin(), cdf.end(), u);
        if (above == cdf.end())
            return {0, 0};
        const auto light = static_cast<std::uint32_t>(above - cdf.begin() - 1);
        return {light, pmf(reference, light)};
    }

    float pmf(const LightSampleContext &, std::uint32_t light) const {
        return static_cast<float>(cdf[light + std::size_t{1}] - cdf[light]);
    }

  private:
    std::vector<double> cdf; // 0 first, 1 last; doubles for millions of lights
};

static_assert(LightSampler<PowerLightSampler>);

} // namespace vantor
