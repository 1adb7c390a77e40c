// Render: from a described scene to picture files.
#pragma once

#include "libvantor/integrators/irradiance_lookup.h"
#include "libvantor/passes/render_request.h"
#include "libvantor/world/world.h"

namespace vantor {

/// Renders with the camera that was made last, and writes a file for every imager whose block is open. What stands in
/// the way is reported. The indirect light may be null: the paths then find it themselves.
void render(const RenderRequest &request, const Registry &registry, WorldCache &worlds, const IrradianceCache *indirect,
            Report &report);

} // namespace vantor
