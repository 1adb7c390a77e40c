// Glossy albedo: how much light rough boundaries reflect altogether.
#include "libvantor/scattering/glossy_albedo.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/microfacet.h"

#include <array>
#include <mutex>
#include <optional>

namespace vantor {

namespace {

GlossyAlbedo mix(GlossyAlbedo a, GlossyAlbedo b, float t) {
    return {a.normal + (b.normal - a.normal) * t, a.grazing + (b.grazing - a.grazing) * t};
}

// The midpoint rule over the numbers that choose a visible facet. Most points lie where the first number is next to 1:
// there the facets are steep, and other facets hide the light that they reflect. `weight_of` is how far a facet's
// reflectance has gone from normal to grazing, for a cosine.
template <class WeightOf> GlossyAlbedo integrated(float cosine, float alpha, WeightOf weight_of) {
    constexpr int rings = 24;
    constexpr int turns = 24;
    const Ggx facets(alpha);
    const Vec3 wo{std::sqrt(1 - cosine * cosine), 0, cosine};
    GlossyAlbedo sum{};
    for (int ring = 0; ring < rings; ++ring) {
        const float rest = (static_cast<float>(ring) + 0.5f) / rings;
        for (int turn = 0; turn < turns; ++turn) {
            const Vec3 half =
                facets.sample_normal(wo, {1 - rest * rest * rest, (static_cast<float>(turn) + 0.5f) / turns});
            const Vec3 wi = reflected(wo, half);
            if (!(wi.z > 0))
                continue;
            const float visible = 3 * rest * rest * facets.visible(wo, wi) / facets.visible(wo);
            const float weight = weight_of(std::clamp(dot(wo, half), 0.0f, 1.0f));
            sum.normal += visible * (1 - weight);
            sum.grazing += visible * weight;
        }
    }
    constexpr float count = rings * turns;
    return {sum.normal / count, sum.grazing / count};
}

// Albedos at nodes, linear between them in the square root of the cosine, because they vary most at small cosines, and
// in the roughness.
class Table {
  public:
    template <class WeightOf> explicit Table(WeightOf weight_of) {
        for (int r = 0; r < roughnesses; ++r) {
            const float alpha = std::max(Ggx::alpha_of(coordinate_of(r, roughnesses)), Ggx::least_alpha);
            for (int c = 0; c < cosines; ++c) {
                const float root = std::max(coordinate_of(c, cosines), 0.01f);
                albedos[r][c] = integrated(root * root, alpha, weight_of);
            }
            // Twice the integral of albedo times cosine, in the root of the cosine, r: 4 albedo(r) r^3 dr. The points
            // of Gauss and Legendre make it exact between nodes.
            means[r] = {};
            for (int c = 0; c + 1 < cosines; ++c)
                for (const auto &[t, weight] :
                     {std::pair{0.1127017f, 5 / 18.0f}, {0.5f, 8 / 18.0f}, {0.8872983f, 5 / 18.0f}}) {
                    const GlossyAlbedo here = mix(albedos[r][c], albedos[r][c + 1], t);
                    const float root = (static_cast<float>(c) + t) / (cosines - 1);
                    const float factor = 4 * root * root * root * weight / (cosines - 1);
                    means[r].normal += here.normal * factor;
                    means[r].grazing += here.grazing * factor;
                }
        }
    }

    GlossyAlbedo at(float cosine, float alpha) const {
        const Position r = position_of(std::sqrt(alpha), roughnesses);
        const Position c = position_of(std::sqrt(cosine), cosines);
        return mix(mix(albedos[r.node][c.node], albedos[r.node][c.node + 1], c.t),
                   mix(albedos[r.node + 1][c.node], albedos[r.node + 1][c.node + 1], c.t), r.t);
    }

    GlossyAlbedo mean(float alpha) const {
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

    std::array<std::array<GlossyAlbedo, cosines>, roughnesses> albedos;
    std::array<GlossyAlbedo, roughnesses> means;
};

// Each is made at its first use, which takes some milliseconds.
const Table &schlick_table() {
    static const Table made(schlick_weight);
    return made;
}

// Those that have a table. Between two of them, weights are linear; they vary most next to 1.
constexpr std::array iors{1.1f, 1.15f, 1.2f, 1.3f, 1.4f, 1.5f, 1.7f, 2.0f, 2.5f, 3.0f};

const Table &dielectric_table(std::size_t i) {
    static std::array<std::once_flag, iors.size()> flags;
    static std::array<std::optional<Table>, iors.size()> tables;
    std::call_once(flags[i],
                   [i] { tables[i].emplace([i](float cosine) { return dielectric_weight(cosine, iors[i]); }); });
    return *tables[i];
}

// What `read` finds in the table of the ior.
template <class Read> GlossyAlbedo interpolated(float ior, Read read) {
    std::size_t i = 0;
    while (i + 2 < iors.size() && iors[i + 1] <= ior)
        ++i;
    const float t = std::clamp((ior - iors[i]) / (iors[i + 1] - iors[i]), 0.0f, 1.0f);
    if (t == 0)
        return read(dielectric_table(i));
    return mix(read(dielectric_table(i)), read(dielectric_table(i + 1)), t);
}

GlossyAlbedo of_mirror(float weight) { return {1 - weight, weight}; }

} // namespace

GlossyAlbedo glossy_albedo(float cosine, float alpha) {
    return alpha < Ggx::least_alpha ? of_mirror(schlick_weight(cosine)) : schlick_table().at(cosine, alpha);
}

GlossyAlbedo glossy_albedo(float cosine, float alpha, float ior) {
    if (alpha < Ggx::least_alpha)
        return of_mirror(dielectric_weight(cosine, ior));
    return interpolated(ior, [=](const Table &table) { return table.at(cosine, alpha); });
}

GlossyAlbedo mean_glossy_albedo(float alpha) {
    // Twice the integral of (1 - cosine)^5 cosine is 1/21.
    return alpha < Ggx::least_alpha ? of_mirror(1 / 21.0f) : schlick_table().mean(alpha);
}

GlossyAlbedo mean_glossy_albedo(float alpha, float ior) {
    if (alpha < Ggx::least_alpha) {
        const float normal = normal_reflectance(ior);
        return of_mirror((mean_dielectric_reflectance(ior) - normal) / (1 - normal));
    }
    return interpolated(ior, [=](const Table &table) { return table.mean(alpha); });
}

} // namespace vantor
