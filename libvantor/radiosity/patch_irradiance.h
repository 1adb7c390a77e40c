// Patch irradiance: what a radiosity pass has found, for the passes after it.
#pragma once

#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/radiosity/patches.h"

#include <memory>

namespace vantor {

/// Interpolated between the vertices of the patches.
class PatchIrradiance : public IrradianceCache {
  public:
    /// The irradiance of every patch. Throws Interrupted.
    PatchIrradiance(std::shared_ptr<const Patches> of, std::span<const SideColors> on_patches,
                    const Interrupt &interrupt)
        : patches(std::move(of)), values(patches->at_vertices(on_patches, interrupt)) {}

    bool irradiance(const Hit &hit, bool is_front, Color &result) const override {
        Patches::Interpolation between;
        if (!patches->interpolation_at(hit, between))
            return false;
        result = {};
        for (std::size_t i = 0; i < 4; ++i) {
            const SideColors &value = values[between.vertices[i]];
            result += (is_front ? value.front : value.back) * between.weights[i];
        }
        return true;
    }

  private:
    std::shared_ptr<const Patches> patches;
    std::vector<SideColors> values; // of the patches' vertices
};

} // namespace vantor
