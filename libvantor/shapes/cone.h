// Cone: cones, cut cones and cylinders, open or closed.
#pragma once

#include "libvantor/shapes/canonical.h"

#include <optional>

namespace vantor {

/// In canonical space the axis runs from the origin to (0, 1, 0). The greater radius is 1 there.
struct Cone {
    CanonicalMap map;
    double base; ///< The radius at y = 0.
    double tip;  ///< The radius at y = 1.
    bool is_closed;

    /// Its primitives.
    enum Part : std::uint32_t { side, base_cap, tip_cap };

    double radius_at(double y) const { return base + (tip - base) * y; }
};

/// Nothing, after a diagnostic, if there is nothing to see.
std::optional<Cone> make_cone(const Parameters &parameters, const CallReport &report);
std::optional<Cone> make_cylinder(const Parameters &parameters, const CallReport &report);

constexpr std::size_t primitives_of(const Cone &) { return 3; }

Crossings crossings(const Cone &cone, const CanonicalRay &ray);
double support(const Cone &cone, Double3 along);
Double3 on_surface(const Cone &cone, std::uint32_t part, Double3 p);

/// u runs once around the axis; v from 0 at the base to 1 at the tip, and on caps from 0 at the rim to 1 at the centre.
SurfaceParameters parameters_at(const Cone &cone, std::uint32_t part, Point2f, Vec3 point);

} // namespace vantor
