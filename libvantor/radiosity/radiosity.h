// Radiosity: the exchange of light between diffuse surfaces, before any picture is made.
#pragma once

#include "libvantor/base/progress.h"
#include "libvantor/radiosity/gathering.h"
#include "libvantor/radiosity/patch_irradiance.h"

#include <optional>

namespace vantor {

/// What the balance of all sides is, and how it was found.
struct Balance {
    std::vector<Color> indirect; ///< The irradiance of each side by light from other surfaces.
    int sweeps = 0;
    float residual = 0; ///< The largest change of a radiosity in the last sweep, relative to the largest radiosity.
};

/// Solves B = reflectance * (direct + followed + F B) for the radiosities B of all sides, without their own emission.
/// Throws Interrupted.
Balance balance_of(std::span<const Row> rows, std::span<const SideLight> lights, const Interrupt &interrupt);

/// How many rays a pass may shoot from each of so many sides: a power of two that is worth having, and so few that
/// those of all sides together take no more memory and time than there is.
int rays_of_side(std::size_t side_count);

/// The rows and lights of all sides of the patches. Where no light comes, directly or not, a row is left with few rays.
/// Throws Interrupted.
struct Exchange {
    std::vector<Row> rows;
    std::vector<SideLight> lights;
};
Exchange gather_all(const Gathering &gathering, std::size_t side_count, const Interrupt &interrupt, Progress &progress);

/// What a scene keeps of its radiosity pass.
class Radiosity {
  public:
    /// How many patches a pass is to make; any number.
    explicit Radiosity(VtLong patches);

    /// Goes through a whole pass. Interrupted, nothing is kept.
    void pass(const Registry &registry, WorldCache &worlds, Report &report);

    /// Its result, for a render pass of the scene as it is now. Null if there is none, or the scene has changed since,
    /// which is noted.
    const PatchIrradiance *result(const Registry &registry, const Report &report) const;

  private:
    // Makes the result. Throws Interrupted.
    void solve(const Registry &registry, const World &world, const Report &report, const Interrupt &interrupt);

    VtLong asked_for; // patches
    std::size_t budget;
    std::optional<PatchIrradiance> light;
    Revision revision; // of the registry, when the result was made
};

} // namespace vantor
