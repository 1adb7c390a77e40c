// Patch irradiance: what a radiosity pass has found, for the passes after it.
#pragma once

#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/radiosity/patches.h"

#include <memory>

namespace vantor {

/// Interpolated between the vertices of the patches.
class PatchIrradiance : public IrradianceCache {
  public:
    /// The irradiance of every patch, on its front and on its back. Throws Interrupted.
    PatchIrradiance(std::shared_ptr<const Patches> of, std::span<const Color> on_fronts,
                    std::span<const Color> on_backs, const Interrupt &interrupt)
        : patches(std::move(of)), fronts(patches->at_vertices(on_fronts, interrupt)),
          backs(patches->at_vertices(on_backs, interrupt)) {}

    bool irradiance(const Hit &hit, bool is_front, Color &result) const override {
        Patches::Interpolation between;
        if (!patches->interpolation_at(hit, between))
            return false;
        const std::vector<Color> &values = is_front ? fronts : backs;
        result = {};
        for (std::size_t i = 0; i < 4; ++i)
            result += values[between.vertices[i]] * between.weights[i];
        return true;
    }

  private:
    std::shared_ptr<const Patches> patches;
    std::vector<Color> fronts; // of the patches' vertices
    std::vector<Color> backs;
};

} // namespace vantor
