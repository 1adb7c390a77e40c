// Albedo table: how much light a rough boundary reflects, tabulated by cosine, roughness and index of refraction.
#pragma once

#include "libvantor/scattering/microfacet.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>

namespace vantor {

template <class Albedo> Albedo mix(Albedo a, Albedo b, float t) { return a + (b - a) * t; }

/// The mean of `albedo_of(half, weight)` over the facets that are visible with that cosine: by the midpoint rule over
/// the numbers that choose one. The weights' mean is 1. Most points lie where the first number is next to 1: there the
/// facets are steep, and other facets hide the light that they reflect. `wo` is {sine, 0, cosine}.
template <class Albedo, class AlbedoOf> Albedo mean_over_facets(Vec3 wo, Ggx facets, AlbedoOf albedo_of) {
    constexpr int rings = 24;
    constexpr int turns = 24;
    Albedo sum{};
    for (int ring = 0; ring < rings; ++ring) {
        const float rest = (static_cast<float>(ring) + 0.5f) / rings;
        for (int turn = 0; turn < turns; ++turn) {
            const Vec3 half =
                facets.sample_normal(wo, {1 - rest * rest * rest, (static_cast<float>(turn) + 0.5f) / turns});
            sum = sum + albedo_of(half, 3 * rest * rest);
        }
    }
    constexpr float count = rings * turns;
    return sum * (1 / count);
}

/// Albedos at nodes, linear between them in the square root of the cosine, because they vary most at small cosines, and
/// in the roughness. An Albedo is a number, or several that can be added and multiplied by a number.
template <class Albedo> class AlbedoTable {
  public:
    /// `albedo_of(wo, alpha)` computes one, which takes some microseconds.
    template <class AlbedoOf> explicit AlbedoTable(AlbedoOf albedo_of) {
        for (int r = 0; r < roughnesses; ++r) {
            const float alpha = std::max(Ggx::alpha_of(coordinate_of(r, roughnesses)), Ggx::least_alpha);
            for (int c = 0; c < cosines; ++c) {
                const float root = std::max(coordinate_of(c, cosines), 0.01f);
                const float cosine = root * root;
                albedos[r][c] = albedo_of(Vec3{std::sqrt(1 - cosine * cosine), 0, cosine}, alpha);
            }
            // Twice the integral of albedo times cosine, in the root of the cosine, r: 4 albedo(r) r^3 dr. The points
            // of Gauss and Legendre make it exact between nodes.
            means[r] = {};
            for (int c = 0; c + 1 < cosines; ++c)
                for (const auto &[t, weight] :
                     {std::pair{0.1127017f, 5 / 18.0f}, {0.5f, 8 / 18.0f}, {0.8872983f, 5 / 18.0f}}) {
                    const Albedo here = mix(albedos[r][c], albedos[r][c + 1], t);
                    const float root = (static_cast<float>(c) + t) / (cosines - 1);
                    means[r] = means[r] + here * (4 * root * root * root * weight / (cosines - 1));
                }
        }
    }

    Albedo at(float cosine, float alpha) const {
        const Position r = position_of(std::sqrt(alpha), roughnesses);
        const Position c = position_of(std::sqrt(cosine), cosines);
        return mix(mix(albedos[r.node][c.node], albedos[r.node][c.node + 1], c.t),
                   mix(albedos[r.node + 1][c.node], albedos[r.node + 1][c.node + 1], c.t), r.t);
    }

    /// Over all cosines, weighted by the cosine.
    Albedo mean(float alpha) const {
        const Position r = position_of(std::sqrt(alpha), roughnesses);
        return mix(means[r.node], means[r.node + 1], r.t);
    }

  private:
    static constexpr int cosines = 32;
    static constexpr int roughnesses = 24;

    struct Position {
        std::size_t node;
        float t; // from this node to the next
    };
    static Position position_of(float coordinate, int nodes) {
        const float scaled = std::clamp(coordinate, 0.0f, 1.0f) * static_cast<float>(nodes - 1);
        const int lower = std::min(static_cast<int>(scaled), nodes - 2);
        return {static_cast<std::size_t>(lower), scaled - static_cast<float>(lower)};
    }
    static float coordinate_of(int i, int nodes) { return static_cast<float>(i) / static_cast<float>(nodes - 1); }

    std::array<std::array<Albedo, cosines>, roughnesses> albedos;
    std::array<Albedo, roughnesses> means;
};

/// A table for each of some indices of refraction, made at its first use; albedos are linear between these.
template <class Albedo, std::size_t count> class AlbedoTablesByIor {
  public:
    using AlbedoOf = Albedo (*)(Vec3 wo, float alpha, float ior);

    /// The indices ascend.
    AlbedoTablesByIor(const std::array<float, count> &indices, AlbedoOf computed)
        : iors(indices), albedo_of(computed) {}

    Albedo at(float cosine, float alpha, float ior) {
        return interpolated(ior, [=](const AlbedoTable<Albedo> &table) { return table.at(cosine, alpha); });
    }
    Albedo mean(float alpha, float ior) {
        return interpolated(ior, [=](const AlbedoTable<Albedo> &table) { return table.mean(alpha); });
    }

  private:
    template <class Read> Albedo interpolated(float ior, Read read) {
        std::size_t i = 0;
        while (i + 2 < count && iors[i + 1] <= ior)
            ++i;
        const float t = std::clamp((ior - iors[i]) / (iors[i + 1] - iors[i]), 0.0f, 1.0f);
        if (t == 0)
            return read(table(i));
        return t == 1 ? read(table(i + 1)) : mix(read(table(i)), read(table(i + 1)), t);
    }

    const AlbedoTable<Albedo> &table(std::size_t i) {
        // To ask the flag takes longer than a lookup.
        if (const AlbedoTable<Albedo> *ready = made[i].load(std::memory_order_acquire))
            return *ready;
        std::call_once(flags[i], [&] {
            made[i].store(&tables[i].emplace([&](Vec3 wo, float alpha) { return albedo_of(wo, alpha, iors[i]); }),
                          std::memory_order_release);
        });
        return *tables[i];
    }

    const std::array<float, count> iors;
    const AlbedoOf albedo_of;
    std::array<std::once_flag, count> flags;
    std::array<std::optional<AlbedoTable<Albedo>>, count> tables;
    std::array<std::atomic<const AlbedoTable<Albedo> *>, count> made{}; // those of them that there are
};

} // namespace vantor
