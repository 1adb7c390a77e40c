// Power light sampler: chooses lights by their power, the same at every point.
#include "libvantor/lights/power_light_sampler.h"

namespace vantor {

PowerLightSampler::PowerLightSampler(std::span<const float> powers, std::span<const std::size_t> groups) {
    constexpr double even_part = 0.25;
    std::vector<double> power_up_to{0.0};
    power_up_to.reserve(powers.size() + 1);
    for (const float power : powers)
        power_up_to.push_back(power_up_to.back() + (std::isfinite(power) ? power : 0.0f));
    const auto power_between = [&](std::size_t first, std::size_t end) {
        return power_up_to[end] - power_up_to[first];
    };
    std::size_t shining_groups = 0;
    for (std::size_t i = 0; i + 1 < groups.size(); ++i)
        shining_groups += power_between(groups[i], groups[i + 1]) > 0;

    cdf.assign(powers.size() + 1, 0.0);
    if (shining_groups == 0)
        return;
    const double total = power_up_to.back();
    for (std::size_t i = 0; i + 1 < groups.size(); ++i) {
        const double power = power_between(groups[i], groups[i + 1]);
        const double factor =
            power > 0 ? (1 - even_part) / total + even_part / (static_cast<double>(shining_groups) * power) : 0.0;
        for (std::size_t light = groups[i]; light < groups[i + 1]; ++light)
            cdf[light + 1] = cdf[light] + power_between(light, light + 1) * factor;
    }
    // The last sum is 1, whatever rounding says.
    const double sum = cdf.back();
    for (double &up_to : cdf)
        up_to /= sum;
}

} // namespace vantor
