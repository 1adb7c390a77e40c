// Irradiance lookup: indirect light that was computed before the paths, for paths to look up.
#pragma once

#include "libvantor/base/color.h"
#include "libvantor/embree/hit.h"

namespace vantor {

/// The light that arrives at diffuse surfaces from other surfaces, not straight from lights. Constant once made.
class IrradianceCache {
  public:
    virtual ~IrradianceCache() = default;

    /// The irradiance of the side of the surface that was hit, in power per area; false if none is known there.
    virtual bool irradiance(const Hit &hit, bool is_front, Color &result) const = 0;
};

/// Where a path that meets diffuse surfaces looks its indirect light up, and ends.
struct IrradianceLookup {
    const IrradianceCache *cache = nullptr; ///< Null: nowhere.
    int surfaces_before = 0; ///< So many diffuse surfaces scatter light themselves; final gathering is 1.
};

} // namespace vantor
