// BSDF: how light scatters where two media meet.
#pragma once

#include "libvantor/scattering/conductor.h"
#include "libvantor/scattering/dielectric.h"
#include "libvantor/scattering/diffuse.h"
#include "libvantor/scattering/plastic.h"
#include "libvantor/scattering/principled.h"

#include <variant>

namespace vantor {

using Bsdf = std::variant<Diffuse, Conductor, Dielectric, Plastic, Principled>;

/// What the work returns for the lobe. Diffuse comes first, inline: most surfaces of most scenes are.
template <class Work> auto with_bsdf(const Bsdf &scattering, const Work &work) {
    if (const Diffuse *diffuse = std::get_if<Diffuse>(&scattering)) [[likely]]
        return work(*diffuse);
    return std::visit(work, scattering);
}

inline BsdfValue evaluate(const Bsdf &scattering, Vec3 out, Vec3 in) {
    return with_bsdf(scattering, [&](const auto &lobe) { return lobe.evaluate(out, in); });
}

inline bool sample(const Bsdf &scattering, Vec3 out, Point2f numbers, float choice, BsdfSample &result) {
    return with_bsdf(scattering, [&](const auto &lobe) { return lobe.sample(out, numbers, choice, result); });
}

/// Another colour than the one that it was made with.
inline void set_color(Bsdf &scattering, Color color) {
    std::visit([&](auto &lobe) { lobe.set_color(color); }, scattering);
}

/// Its colour, multiplied by a factor of 0 to 1.
inline void tint(Bsdf &scattering, Color factor) {
    std::visit([&](auto &lobe) { lobe.tint(factor); }, scattering);
}

/// Another roughness, 0 to 1; nothing where a lobe has none.
inline void set_roughness(Bsdf &scattering, float roughness) {
    std::visit([&](auto &lobe) { lobe.set_roughness(roughness); }, scattering);
}

inline Color albedo(const Bsdf &scattering) {
    return std::visit([](const auto &lobe) { return lobe.albedo(); }, scattering);
}

inline bool is_specular(const Bsdf &scattering) {
    return with_bsdf(scattering, [](const auto &lobe) { return lobe.is_specular(); });
}

inline bool transmits(const Bsdf &scattering) {
    return std::visit([](const auto &lobe) { return lobe.transmits(); }, scattering);
}

} // namespace vantor
