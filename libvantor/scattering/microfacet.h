// Microfacet: rough surfaces as many small mirrors, whose slopes follow a distribution.
#pragma once

#include "libvantor/base/warp.h"

namespace vantor {

/// The mirror image of a direction on the other side of a normal.
inline Vec3 reflected(Vec3 direction, Vec3 normal) { return normal * (2 * dot(direction, normal)) - direction; }

/// Where light from a direction goes through a boundary, towards which the normal is turned. The cosines are those of
/// refraction_of().
inline Vec3 refracted(Vec3 direction, Vec3 normal, float cosine, float refracted_cosine, float ratio) {
    return normal * (cosine / ratio - refracted_cosine) - direction * (1 / ratio);
}

/// A direction with the other z, if the side is -1.
inline Vec3 on_side(Vec3 direction, float side) { return {direction.x, direction.y, side * direction.z}; }

/// The same roughness in all directions along the surface. GGX: Walter, Marschner, Li, Torrance, "Microfacet Models for
/// Refraction through Rough Surfaces", 2007 (Trowbridge, Reitz, 1975). Masking after Smith: Heitz, "Understanding the
/// Masking-Shadowing Function in Microfacet-Based BRDFs", JCGT 2014. Light that meets several facets is left out;
/// EnergyCompensation adds it for metal, DielectricCompensation for glass.
///
/// Directions are in the frame of the surface, of unit length. wo and wi are above it, z > 0, unless stated otherwise.
class Ggx {
  public:
    /// Below this, a surface is a mirror: its facets vary by less than a twentieth of a degree.
    static constexpr float least_alpha = 1e-3f;

    static constexpr float alpha_of(float roughness) { return roughness * roughness; }

    /// least_alpha to 1.
    explicit Ggx(float roughness_squared) : alpha(roughness_squared) {}

    /// Facets per solid angle of their normal and area of the surface.
    float distribution(Vec3 normal) const {
        const float stretch = (normal.x * normal.x + normal.y * normal.y) / (alpha * alpha) + normal.z * normal.z;
        return 1 / (pi * alpha * alpha * stretch * stretch);
    }

    /// Of the facets that face the direction, the fraction that is not hidden. For either side.
    float visible(Vec3 direction) const { return 1 / (1 + lambda(direction)); }

    /// The fraction that is not hidden from either of two directions on the same side, whose heights go together.
    float visible(Vec3 a, Vec3 b) const { return 1 / (1 + lambda(a) + lambda(b)); }

    /// The value of a mirror's reflection, but for the reflectance; the half vector is that of wo and wi.
    float reflection(Vec3 wo, Vec3 wi, Vec3 half) const {
        return distribution(half) * visible(wo, wi) / (4 * wo.z * wi.z);
    }

    /// The pdf of directions that are reflected at visible facets.
    float reflection_pdf(Vec3 wo, Vec3 half) const { return distribution(half) * visible(wo) / (4 * wo.z); }

    /// The pdf of the normals of visible facets; they are turned to wo.
    float normal_pdf(Vec3 wo, Vec3 normal) const { return distribution(normal) * visible(wo) * dot(wo, normal) / wo.z; }

    /// The normal of a facet that is visible from wo. Heitz, "Sampling the GGX Distribution of Visible Normals", JCGT
    /// 2018.
    Vec3 sample_normal(Vec3 wo, Point2f u) const {
        // The surface is stretched until its facets are those of a half sphere.
        const Vec3 seen_from = normalized({alpha * wo.x, alpha * wo.y, wo.z});
        const float square = seen_from.x * seen_from.x + seen_from.y * seen_from.y;
        const Vec3 across = square > 0 ? Vec3{-seen_from.y, seen_from.x, 0} * (1 / std::sqrt(square)) : Vec3{1, 0, 0};
        const Vec3 along = cross(seen_from, across);

        // A point of its projection, as seen from there: half a disk and half an ellipse.
        const Vec3 d = warp::disk(u);
        const float rest = std::max(0.0f, 1 - d.x * d.x);
        const float t = 0.5f * (1 + seen_from.z);
        const float y = (1 - t) * std::sqrt(rest) + t * d.y;
        const Vec3 normal = across * d.x + along * y + seen_from * std::sqrt(std::max(0.0f, rest - y * y));
        return normalized({alpha * normal.x, alpha * normal.y, std::max(normal.z, 0.0f)});
    }

  private:
    // Hidden area per visible area.
    float lambda(Vec3 direction) const {
        const float across2 = direction.x * direction.x + direction.y * direction.y;
        return 0.5f * (std::sqrt(1 + alpha * alpha * across2 / (direction.z * direction.z)) - 1);
    }

    float alpha;
};

} // namespace vantor
