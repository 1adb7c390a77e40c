// BVH light sampler: chooses lights by what they can bring to a point.
#include "libvantor/lights/bvh_light_sampler.h"

#include "libvantor/lights/bvh_light_weights.h"

namespace vantor {

namespace {

// How much of the irradiance arrives is not known before the shadow ray: the sun may be behind a wall, a lamp behind a
// table. So neither the tree nor the infinite lights, nor one of these, takes nearly all of the choice.
constexpr float least_probability = 0.05f;
constexpr float even_part_of_infinite = 0.2f;

// How much of an infinite light is for light samples to find. BSDF samples find what is the same from everywhere at
// least as well, and a light sample that goes to an even sky is one less of the sun.
float part_of_light_samples(const InfiniteLightBounds &light, const LightSampleContext &reference) {
    constexpr float least_part = 0.02f;
    return reference.has_bsdf_samples ? std::max(light.contrast, least_part) : 1.0f;
}

float weight(const InfiniteLightBounds &light, const LightSampleContext &reference) {
    return part_of_light_samples(light, reference) * light.irradiance(reference.normal);
}

// Which of some weights a number in [0, sum) falls into. The number is then the rest of it, from 0 to 1.
template <class Weights> std::size_t chosen(const Weights &weights, float sum, double &u) {
    const double wanted = u * sum;
    double before = 0;
    std::size_t last = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        if (!(weights[i] > 0))
            continue;
        last = i;
        if (wanted < before + weights[i])
            break;
        before += weights[i];
    }
    // Rounding may leave the last sum below the number.
    constexpr double below_one = 1 - 0x1p-32;
    u = std::clamp((wanted - before) / weights[last], 0.0, below_one);
    return last;
}

} // namespace

template <class Reference>
LightChoice BvhLightSampler::descend(const Reference &reference, double u, Weights weights, float sum) const {
    std::size_t node = 0;
    float pmf = 1;
    while (sum > 0) {
        const std::size_t lane = chosen(weights, sum, u);
        pmf *= weights[lane] / sum;
        const std::uint32_t child = nodes[node].children[lane];
        if (child >= is_light)
            return {child - is_light, pmf};
        node = child;
        sum = weigh(nodes[node], reference, weights);
    }
    return {0, 0};
}

template <class Reference>
BvhLightSampler::TreePmf BvhLightSampler::tree_pmf(const Reference &reference, std::uint32_t light) const {
    TreePmf result{1, 0};
    for (std::uint32_t slot = slots[light]; slot != nowhere;) {
        const Node &node = nodes[slot / width];
        Weights weights;
        result.root_sum = weigh(node, reference, weights);
        if (!(weights[slot % width] > 0))
            return {0, 0};
        result.pmf *= weights[slot % width] / result.root_sum;
        slot = node.parent;
    }
    return result;
}

BvhLightSampler::Probabilities BvhLightSampler::probabilities(const LightSampleContext &reference,
                                                              float finite_sum) const {
    float weight_sum = 0;
    float part_sum = 0;
    for (const InfiniteLight &infinite : infinite_lights) {
        weight_sum += weight(infinite.bounds, reference);
        part_sum += part_of_light_samples(infinite.bounds, reference);
    }
    const float scaled = std::clamp(weight_sum * intensity_scale, least_light_weight, most_light_weight);
    if (infinite_lights.empty() || !(finite_sum > 0)) {
        const float infinite = infinite_lights.empty() ? 0.0f : 1.0f;
        return {1 - infinite, infinite, weight_sum, part_sum};
    }
    const float finite = std::clamp(finite_sum / (finite_sum + scaled), least_probability, 1 - least_probability);
    return {finite, 1 - finite, weight_sum, part_sum};
}

float BvhLightSampler::infinite_pmf(const Probabilities &all, const LightSampleContext &reference,
                                    const InfiniteLight &light) const {
    if (infinite_lights.size() == 1)
        return all.infinite;
    const float even = part_of_light_samples(light.bounds, reference) / all.part_sum;
    const float weighed = weight(light.bounds, reference) / all.weight_sum;
    return all.infinite * (even_part_of_infinite * even + (1 - even_part_of_infinite) * weighed);
}

LightChoice BvhLightSampler::sample(const LightSampleContext &reference, double u) const {
    if (only_light != nowhere)
        return {only_light, 1};
    Weights weights;
    const float sum = nodes.empty() ? 0.0f : weigh(nodes.front(), reference, weights);
    if (infinite_lights.empty())
        return descend(reference, u, weights, sum);

    const Probabilities all = probabilities(reference, sum);
    if (u < all.finite) {
        LightChoice choice = descend(reference, u / all.finite, weights, sum);
        choice.pmf *= all.finite;
        return choice;
    }
    double up_to = all.finite;
    LightChoice choice{0, 0};
    for (const InfiniteLight &infinite : infinite_lights) {
        choice = {infinite.light, infinite_pmf(all, reference, infinite)};
        up_to += choice.pmf;
        if (u < up_to)
            break;
    }
    return choice;
}

float BvhLightSampler::pmf(const LightSampleContext &reference, std::uint32_t light) const {
    if (only_light != nowhere)
        return light == only_light ? 1.0f : 0.0f;
    const std::uint32_t slot = slots[light];
    if (slot == nowhere)
        return 0;
    if (slot >= is_light) {
        Weights weights;
        const Probabilities all =
            probabilities(reference, nodes.empty() ? 0.0f : weigh(nodes.front(), reference, weights));
        return infinite_pmf(all, reference, infinite_lights[slot - is_light]);
    }
    const TreePmf in_tree = tree_pmf(reference, light);
    if (infinite_lights.empty() || in_tree.pmf == 0)
        return in_tree.pmf;
    return in_tree.pmf * probabilities(reference, in_tree.root_sum).finite;
}

LightChoice BvhLightSampler::sample(const LightSampleRay &reference, double u) const {
    if (nodes.empty())
        return {0, 0};
    if (only_light != nowhere)
        return {only_light, 1};
    Weights weights;
    const float sum = weigh(nodes.front(), reference, weights);
    return descend(reference, u, weights, sum);
}

float BvhLightSampler::pmf(const LightSampleRay &reference, std::uint32_t light) const {
    if (slots[light] >= is_light)
        return 0;
    return light == only_light ? 1.0f : tree_pmf(reference, light).pmf;
}

} // namespace vantor
