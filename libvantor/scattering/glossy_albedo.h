// Glossy albedo: how much light rough boundaries reflect altogether.
#pragma once

namespace vantor {

/// The fraction of light that is reflected is normal * R0 + grazing * R90, where R0 and R90 are the reflectances of a
/// facet at normal and at grazing incidence.
struct GlossyAlbedo {
    float normal;
    float grazing;

    float of(float r0, float r90 = 1) const { return normal * r0 + grazing * r90; }
};
inline GlossyAlbedo operator+(GlossyAlbedo a, GlossyAlbedo b) { return {a.normal + b.normal, a.grazing + b.grazing}; }
inline GlossyAlbedo operator-(GlossyAlbedo a, GlossyAlbedo b) { return {a.normal - b.normal, a.grazing - b.grazing}; }
inline GlossyAlbedo operator*(GlossyAlbedo a, float factor) { return {a.normal * factor, a.grazing * factor}; }

/// Of light that leaves with that cosine, 0 to 1; alpha is 0 to 1, and below Ggx::least_alpha a mirror. Between normal
/// and grazing incidence, a facet reflects as in Schlick's approximation. Read from a table, exact to about 0.002.
GlossyAlbedo glossy_albedo(float cosine, float alpha);

/// The same where light meets a dielectric from outside, by Fresnel's equations: R0 is normal_reflectance(ior), R90 is
/// 1. The ior is 1.1 to 3; between those that have a table, the albedo is exact to about 0.005.
GlossyAlbedo glossy_albedo(float cosine, float alpha, float ior);

/// Of light from everywhere: the mean of glossy_albedo() over the cosines, weighted by the cosine.
GlossyAlbedo mean_glossy_albedo(float alpha);
GlossyAlbedo mean_glossy_albedo(float alpha, float ior);

} // namespace vantor
