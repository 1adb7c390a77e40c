// Albedo table: how much light a rough boundary reflects, tabulated by cosine, roughness and index of refraction.
#pragma once

#include "libvantor/scattering/microfacet.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>
#include <utility>

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
/// in the roughness. A row of nodes is computed when its roughness is first asked for. An Albedo is a number, or
/// several that can be added and multiplied by a number.
template <class Albedo> class AlbedoTable {
  public:
    /// Computes one, which takes some microseconds; for a table of a boundary with that index of refraction.
    using AlbedoOf = Albedo (*)(Vec3 wo, float alpha, float ior);

    explicit AlbedoTable(AlbedoOf computed, float of_ior = 1) : albedo_of(computed), ior(of_ior) {}

    Albedo at(float cosine, float alpha) {
        const Position r = position_of(std::sqrt(alpha), roughnesses);
        const Position c = position_of(std::sqrt(cosine), cosines);
        const auto &rougher = row(r.node + 1).albedos;
        const auto &smoother = row(r.node).albedos;
        return mix(mix(smoother[c.node], smoother[c.node + 1], c.t), mix(rougher[c.node], rougher[c.node + 1], c.t),
                   r.t);
    }

    /// Over all cosines, weighted by the cosine.
    Albedo mean(float alpha) {
        const Position r = position_of(std::sqrt(alpha), roughnesses);
        return mix(row(r.node).mean, row(r.node + 1).mean, r.t);
    }

  private:
    static constexpr int cosines = 32;
    static constexpr int roughnesses = 24;

    struct Row {
        std::array<Albedo, cosines> albedos;
        Albedo mean;
    };
    struct LazyRow {
        std::once_flag flag;
        std::optional<Row> row;
        std::atomic<const Row *> made = nullptr;
    };

    struct Position {
        std::size_t node;
        float t; // from this node to the next
    };
    static Position position_of(float coordinate, int nodes) {
        const float scaled = std::clamp(coordinate, 0.0f, 1.0f) * static_cast<float>(nodes - 1);
        const int lower = std::min(static_cast<int>(scaled), nodes - 2);
        return {static_cast<std::size_t>(lower), scaled - static_cast<float>(lower)};
    }
    static float coordinate_of(std::size_t i, int nodes) {
        return static_cast<float>(i) / static_cast<float>(nodes - 1);
    }

    const Row &row(std::size_t r) {
        LazyRow &lazy = rows[r];
        // To ask the flag takes longer than a lookup.
        if (const Row *ready = lazy.made.load(std::memory_order_acquire))
            return *ready;
        std::call_once(lazy.flag,
                       [&] { lazy.made.store(&lazy.row.emplace(computed_row(r)), std::memory_order_release); });
        return *lazy.row;
    }

    Row computed_row(std::size_t r) const {
        Row result{};
        const float alpha = std::max(Ggx::alpha_of(coordinate_of(r, roughnesses)), Ggx::least_alpha);
        for (std::size_t c = 0; c < cosines; ++c) {
            const float root = std::max(coordinate_of(c, cosines), 0.01f);
            const float cosine = root * root;
            result.albedos[c] = albedo_of(Vec3{std::sqrt(1 - cosine * cosine), 0, cosine}, alpha, ior);
        }
        // Twice the integral of albedo times cosine, in the root of the cosine, r: 4 albedo(r) r^3 dr. The points of
        // Gauss and Legendre make it exact between nodes.
        for (std::size_t c = 0; c + 1 < cosines; ++c)
            for (const auto &[t, weight] :
                 {std::pair{0.1127017f, 5 / 18.0f}, {0.5f, 8 / 18.0f}, {0.8872983f, 5 / 18.0f}}) {
                const Albedo here = mix(result.albedos[c], result.albedos[c + 1], t);
                const float root = (static_cast<float>(c) + t) / (cosines - 1);
                result.mean = result.mean + here * (4 * root * root * root * weight / (cosines - 1));
            }
        return result;
    }

    const AlbedoOf albedo_of;
    const float ior;
    std::array<LazyRow, roughnesses> rows;
};

/// A table for each of some indices of refraction; albedos are linear between these.
template <class Albedo, std::size_t count> class AlbedoTablesByIor {
  public:
    /// The indices ascend.
    AlbedoTablesByIor(const std::array<float, count> &indices, typename AlbedoTable<Albedo>::AlbedoOf albedo_of)
        : AlbedoTablesByIor(indices, albedo_of, std::make_index_sequence<count>()) {}

    Albedo at(float cosine, float alpha, float ior) {
        return interpolated(ior, [=](AlbedoTable<Albedo> &table) { return table.at(cosine, alpha); });
    }
    Albedo mean(float alpha, float ior) {
        return interpolated(ior, [=](AlbedoTable<Albedo> &table) { return table.mean(alpha); });
    }

  private:
    // Tables stay where they are made: threads wait at their flags.
    template <std::size_t... i>
    AlbedoTablesByIor(const std::array<float, count> &indices, typename AlbedoTable<Albedo>::AlbedoOf albedo_of,
                      std::index_sequence<i...>)
        : iors(indices), tables{AlbedoTable<Albedo>(albedo_of, indices[i])...} {}

    template <class Read> Albedo interpolated(float ior, Read read) {
        std::size_t i = 0;
        while (i + 2 < count && iors[i + 1] <= ior)
            ++i;
        const float t = std::clamp((ior - iors[i]) / (iors[i + 1] - iors[i]), 0.0f, 1.0f);
        if (t == 0)
            return read(tables[i]);
        return t == 1 ? read(tables[i + 1]) : mix(read(tables[i]), read(tables[i + 1]), t);
    }

    const std::array<float, count> iors;
    std::array<AlbedoTable<Albedo>, count> tables;
};

} // namespace vantor
