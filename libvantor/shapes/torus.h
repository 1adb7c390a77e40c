// Torus: a ring.
#pragma once

#include "libvantor/shapes/canonical.h"

#include <optional>

namespace vantor {

/// In canonical space around the Y axis, with its tube around the unit circle.
struct Torus {
    CanonicalMap map;
    double tube; ///< The radius of the tube, at most 1.
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Torus> make_torus(const Parameters &parameters, const CallReport &report);

constexpr std::size_t primitives_of(const Torus &) { return 1; }

Crossings crossings(const Torus &torus, const CanonicalRay &ray);
double support(const Torus &torus, Double3 along);
Double3 on_surface(const Torus &torus, std::uint32_t, Double3 p);

/// u runs once around the axis; v once around the tube, from 0 on the outer side by the side that the axis points to.
SurfaceParameters parameters_at(const Torus &torus, std::uint32_t, Point2f, Vec3 point);

} // namespace vantor
