// Indirect light: what a radiosity pass has found, for the passes after it.
#pragma once

#include "libvantor/passes/patches.h"

#include <memory>

namespace vantor {

/// The light that arrives at diffuse surfaces from other surfaces, not straight from lights. Constant once made.
class IndirectLight {
  public:
    /// The irradiance of every patch, on its front and on its back. Interrupted, it is of no use.
    IndirectLight(std::shared_ptr<const Patches> of, std::span<const Color> on_fronts, std::span<const Color> on_backs,
                  const Interrupt &interrupt)
        : patches(std::move(of)), fronts(patches->at_vertices(on_fronts, interrupt)),
          backs(patches->at_vertices(on_backs, interrupt)) {}

    /// The irradiance of the surface that was hit, in power per area; false if it has no patches.
    bool irradiance(const Hit &hit, bool is_front, Color &result) const {
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

/// Where a path that meets diffuse surfaces is told its indirect light, and ends.
struct IndirectLookup {
    const IndirectLight *light = nullptr; ///< Null: nowhere.
    int surfaces_before = 0;              ///< So many diffuse surfaces scatter light themselves; final gathering is 1.
};

} // namespace vantor
