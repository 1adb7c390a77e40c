// BVH light sampler: chooses lights by what they can bring to a point.
#pragma once

#include "libvantor/lights/light_bounds.h"
#include "libvantor/lights/light_sampler.h"

#include <array>
#include <span>
#include <vector>

namespace vantor {

/// A ray through a medium that is to be lit, up to a distance that may be infinite.
struct LightSampleRay {
    Ray ray;
    float length;
};

/// A bounding volume hierarchy over all finite lights, and infinite lights beside it. Conty Estevez, Kulla, "Importance
/// Sampling of Many Lights with Adaptive Tree Splitting", 2018; Pharr, Jakob, Humphreys, "Physically Based Rendering",
/// 4th ed., 12.6.3. Nodes have eight children instead of two: up to eight lights are all weighed, and more take fewer
/// steps, each of which is one loop over eight lanes.
///
/// A light that may bring anything is chosen at times: bounds are only ever too wide. Where they are, it may turn out
/// that no light of a node does, and none is chosen.
class BvhLightSampler {
  public:
    struct FiniteLight {
        LightBounds bounds;
        std::uint32_t light;
    };
    struct InfiniteLight {
        InfiniteLightBounds bounds;
        std::uint32_t light;
    };

    /// No lights.
    BvhLightSampler() = default;

    /// Lights are numbered below `lights`; those of neither kind, or without a finite intensity above 0, are never
    /// chosen. The finite ones are reordered.
    BvhLightSampler(std::span<FiniteLight> finite, std::span<const InfiniteLight> infinite, std::size_t lights);

    bool is_empty() const { return nodes.empty() && infinite_lights.empty(); }

    LightChoice sample(const LightSampleContext &reference, double u) const;
    float pmf(const LightSampleContext &reference, std::uint32_t light) const;

    /// Likewise for a whole ray, by the fluence that finite lights bring to the part of it that they reach; infinite
    /// ones are not chosen.
    LightChoice sample(const LightSampleRay &reference, double u) const;
    float pmf(const LightSampleRay &reference, std::uint32_t light) const;

    static constexpr std::size_t width = 8;
    using Weights = std::array<float, width>;

    /// Up to eight children, each a light or a node, side by side for vector instructions.
    struct Node {
        using Lanes = std::array<float, width>;
        Lanes center_x, center_y, center_z;
        Lanes half_x, half_y, half_z;
        Lanes axis_x, axis_y, axis_z;
        Lanes cos_normals;
        Lanes cos_emission;
        Lanes intensity;                           // as a part of the most intense light; 0 in lanes without a child
        std::array<std::uint32_t, width> children; // the index of a node; or is_light + that of a light
        std::uint32_t parent;                      // node * width + lane; of the root nowhere
    };
    static constexpr std::uint32_t is_light = 1u << 31;
    static constexpr std::uint32_t nowhere = ~0u;

  private:
    // How likely the choice falls on the tree, or on the infinite lights.
    struct Probabilities {
        float finite;     // the probability of the tree
        float infinite;   // of all infinite lights together
        float weight_sum; // of the infinite lights, by weight()
        float part_sum;   // likewise, by part_of_light_samples()
    };
    Probabilities probabilities(const LightSampleContext &reference, float finite_sum) const;
    float infinite_pmf(const Probabilities &all, const LightSampleContext &reference, const InfiniteLight &light) const;

    template <class Reference>
    LightChoice descend(const Reference &reference, double u, Weights weights, float sum) const;

    struct TreePmf {
        float pmf;      // with which the tree, once it is chosen, leads to the light
        float root_sum; // of the weights at the root; unset if the pmf is 0
    };
    template <class Reference> TreePmf tree_pmf(const Reference &reference, std::uint32_t light) const;

    std::vector<Node> nodes; // the root first
    std::vector<InfiniteLight> infinite_lights;
    std::vector<std::uint32_t> slots; // of each light: node * width + lane, or is_light + its index among the infinite
    float intensity_scale = 1;        // of the most intense finite light, one over
    std::uint32_t only_light = nowhere; // the one, if there is just one
};

static_assert(LightSampler<BvhLightSampler>);

} // namespace vantor
