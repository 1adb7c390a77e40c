// Media: in which bodies a point lies.
#pragma once

#include "libvantor/description/registry.h"
#include "libvantor/embree/tracer.h"

namespace vantor {

/// Takes a ray that goes on behind a hit to the other side of the surface.
inline void cross_surface(MediumStack &media, const Placement &placement, const Hit &hit, Vec3 direction) {
    if (placement.interior < 0)
        return;
    if (dot(hit.geometric_normal, direction) < 0)
        media.enter(placement.interior);
    else
        media.leave(placement.interior);
}

/// The media around a point: a ray to the outside leaves their bodies.
MediumStack media_at(Vec3 point, const Tracer &tracer, std::span<const Placement> placements);

} // namespace vantor
