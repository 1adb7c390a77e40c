// Disk: flat and round, with or without a hole.
#include "libvantor/shapes/disk.h"

namespace vantor {

std::optional<Disk> make_disk(const Parameters &parameters, const CallReport &report) {
    const double radius = parameters.number("radius");
    const double inner = parameters.number("inner_radius");
    if (!(inner < radius)) {
        report.diagnostic(
            "the disk has no area, as \"inner_radius\" is not below \"radius\"; nothing of it will be seen");
        return {};
    }
    VtVector3 normal = parameters.vector("normal");
    normal.Normalize();
    return Disk{CanonicalMap(parameters.vector("center"), normal, radius), inner / radius};
}

Crossings crossings(const Disk &disk, const CanonicalRay &ray) {
    Crossings result;
    const double t = -ray.origin.y / ray.direction.y;
    const Double3 p = ray.at(t);
    const double square = p.x * p.x + p.z * p.z;
    // A ray along the disk gives NaN, which fails both comparisons.
    if (square <= 1 && square >= disk.hole * disk.hole)
        result.add({t, {0, 1, 0}, 0});
    return result;
}

double support(const Disk &, Double3 along) { return std::hypot(along.x, along.z); }

SurfaceParameters parameters_at(const Disk &disk, std::uint32_t, Point2f, Vec3 point) {
    const Double3 p = disk.map.point_back(Double3(point));
    return {{turn_of(p), static_cast<float>(1 - std::hypot(p.x, p.z))},
            to_float(disk.map.direction(along_turn(p))),
            to_float(disk.map.direction(away_from_axis(p) * -1))};
}

} // namespace vantor
