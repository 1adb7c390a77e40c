// Render: from a described scene to picture files.
#pragma once

#include "libvantor/description/registry.h"
#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/world/world.h"

namespace vantor {

/// What a script asks a render pass for.
struct RenderRequest {
    VtLong width; ///< Of the whole picture, in pixels.
    VtLong height;
    VtLong samples; ///< For each pixel.
    double x0;      ///< The window, in fractions of the picture from its upper left corner.
    double y0;
    double x1;
    double y1;
};

/// Renders with the camera that was made last, and writes a file for every imager whose block is open. What stands in
/// the way is reported. The indirect light may be null: the paths then find it themselves.
void render(const RenderRequest &request, const Registry &registry, WorldCache &worlds, const IrradianceCache *indirect,
            Report &report);

} // namespace vantor
