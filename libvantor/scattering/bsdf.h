// BSDF: how light scatters where two media meet.
#pragma once

#include "libvantor/scattering/conductor.h"
#include "libvantor/scattering/dielectric.h"
#include "libvantor/scattering/diffuse.h"
#include "libvantor/scattering/plastic.h"
#include "libvantor/scattering/principled.h"

#include <type_traits>
#include <utility>
#include <variant>

namespace vantor {

/// The list of all BSDFs, which both variants follow.
template <DescribedBsdf... Descriptions> struct BsdfList {
    using Description = std::variant<Descriptions...>;
    using Prepared = std::variant<typename Descriptions::Prepared...>;
};
using AllBsdfs = BsdfList<Diffuse, Conductor, Dielectric, Plastic, Principled>;

/// How a surface scatters, as the script describes it.
using BsdfDescription = AllBsdfs::Description;

/// Calls `work` with the alternative that the variant holds. The first is Diffuse, which most surfaces are: it is
/// tested first and inline.
template <class Variant, class Work> decltype(auto) visit_bsdf(Variant &&variant, const Work &work) {
    if (auto *diffuse = std::get_if<0>(&variant)) [[likely]]
        return work(*diffuse);
    return std::visit(work, std::forward<Variant>(variant));
}

/// Gives it another colour.
inline void set_color(BsdfDescription &description, Color color) {
    visit_bsdf(description, [&](auto &bsdf) { bsdf.set_color(color); });
}

/// Multiplies its colour by a factor of 0 to 1.
inline void tint(BsdfDescription &description, Color factor) {
    visit_bsdf(description, [&](auto &bsdf) { bsdf.tint(factor); });
}

/// Gives it another roughness, 0 to 1; no effect on a BSDF without roughness.
inline void set_roughness(BsdfDescription &description, float roughness) {
    visit_bsdf(description, [&](auto &bsdf) { bsdf.set_roughness(roughness); });
}

/// Gives a Principled another fraction of metal, 0 to 1; no effect on others.
inline void set_metallic(BsdfDescription &description, float metallic) {
    if (auto *principled = std::get_if<Principled>(&description))
        principled->metallic = metallic;
}

inline Color albedo(const BsdfDescription &description) {
    return visit_bsdf(description, [](const auto &bsdf) { return bsdf.albedo(); });
}

inline bool is_specular(const BsdfDescription &description) {
    return visit_bsdf(description, [](const auto &bsdf) { return bsdf.is_specular(); });
}

/// Whether it may refract light to the other side.
inline bool transmits(const BsdfDescription &description) {
    return visit_bsdf(description, [](const auto &bsdf) { return bsdf.transmits(); });
}

inline bool is_diffuse(const BsdfDescription &description) { return std::holds_alternative<Diffuse>(description); }

/// Any BSDF at a hit, prepared for one `wo`.
class Bsdf {
  public:
    Bsdf(const BsdfDescription &description, Vec3 wo)
        : prepared(visit_bsdf(description, [&]<class Description>(const Description &of) {
              return AllBsdfs::Prepared(std::in_place_type<typename Description::Prepared>, of, wo);
          })) {}

    BsdfValue evaluate(Vec3 wi) const {
        return visit_bsdf(prepared, [&](const auto &bsdf) { return bsdf.evaluate(wi); });
    }
    float pdf(Vec3 wi) const {
        return visit_bsdf(prepared, [&](const auto &bsdf) { return bsdf.pdf(wi); });
    }
    bool sample(Point2f u, float uc, BsdfSample &sample) const {
        return visit_bsdf(prepared, [&](const auto &bsdf) { return bsdf.sample(u, uc, sample); });
    }

  private:
    AllBsdfs::Prepared prepared;
};
static_assert(PreparedBsdf<Bsdf>);

} // namespace vantor
