// Disk: flat and round, with or without a hole.
#pragma once

#include "libvantor/shapes/canonical.h"

#include <optional>

namespace vantor {

/// In canonical space the unit disk around the Y axis, with its front towards +Y.
struct Disk {
    CanonicalMap map;
    double hole; ///< The radius of the hole, below 1; 0 for none.
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Disk> make_disk(const Parameters &parameters, const CallReport &report);

constexpr std::size_t primitives_of(const Disk &) { return 1; }

Crossings crossings(const Disk &disk, const CanonicalRay &ray);
double support(const Disk &disk, Double3 along);
inline Double3 on_surface(const Disk &, std::uint32_t, Double3 p) { return {p.x, 0, p.z}; }

/// u runs once around the normal; v from 0 at the rim to 1 at the centre, which a hole leaves out.
SurfaceParameters parameters_at(const Disk &disk, std::uint32_t, Point2f, Vec3 point);

} // namespace vantor
