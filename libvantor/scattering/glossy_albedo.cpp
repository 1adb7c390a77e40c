// Glossy albedo: how much light rough boundaries reflect altogether.
#include "libvantor/scattering/glossy_albedo.h"

#include "libvantor/scattering/fresnel.h"
#include "libvantor/scattering/microfacet.h"

#include <array>

namespace vantor {

namespace {

GlossyAlbedo mix(GlossyAlbedo a, GlossyAlbedo b, float t) {
    return {a.normal + (b.normal - a.normal) * t, a.grazing + (b.grazing - a.grazing) * t};
}

// The midpoint rule over the numbers that choose a visible facet. Most points lie where the first number is next to 1:
// there the facets are steep, and other facets hide the light that they reflect.
GlossyAlbedo integrated(float cosine, float alpha) {
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
            const float weight = schlick_weight(dot(wo, half));
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
    Table() {
        for (int r = 0; r < roughnesses; ++r) {
            const float alpha = std::max(Ggx::alpha_of(coordinate_of(r, roughnesses)), Ggx::least_alpha);
            for (int c = 0; c < cosines; ++c) {
                const float root = std::max(coordinate_of(c, cosines), 0.01f);
                albedos[r][c] = integrated(root * root, alpha);
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

// Made at the first use, which takes some milliseconds.
const Table &table() {
    static const Table made;
    return made;
}

} // namespace

GlossyAlbedo glossy_albedo(float cosine, float alpha) {
    if (alpha < Ggx::least_alpha) {
        const float weight = schlick_weight(cosine);
        return {1 - weight, weight};
    }
    return table().at(cosine, alpha);
}

GlossyAlbedo mean_glossy_albedo(float alpha) {
    // Twice the integral of (1 - cosine)^5 cosine is 1/21.
    if (alpha < Ggx::least_alpha)
        return {20 / 21.0f, 1 / 21.0f};
    return table().mean(alpha);
}

} // namespace vantor
