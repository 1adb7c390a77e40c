// Diffuse lanes: the diffuse surfaces of a chunk of vertices, side by side. Most surfaces are, and vector instructions
// do with all of them what others take one by one.
#pragma once

#include "libvantor/base/lanes.h"
#include "libvantor/scattering/diffuse.h"
#include "libvantor/world/light_lanes.h"
#include "libvantor/world/surface.h"

namespace vantor {

struct DiffuseLanes {
    Mask are_set{}; ///< Which lanes have a diffuse surface. The others are computed, too, but mean nothing.
    Vec3Lanes point;
    Vec3Lanes geometric_normal;
    Vec3Lanes shading_normal;
    Lanes<float> error{}; ///< As Hit::error.
    Lanes<float> side{};  ///< 1 or -1: where the path arrives.
    ColorLanes reflectance;

    /// What lights are chosen by there.
    LightSampleContext light_context(std::size_t lane) const {
        return {point[lane], shading_normal[lane] * side[lane]};
    }

    /// The surface has to be diffuse.
    void set(std::size_t lane, const Hit &hit, const Surface &surface) {
        are_set[lane] = true;
        point.set(lane, hit.point);
        geometric_normal.set(lane, hit.geometric_normal);
        shading_normal.set(lane, surface.shading_normal());
        error[lane] = hit.error;
        side[lane] = surface.arrives_at_front() ? 1.0f : -1.0f;
        reflectance.set(lane, surface.albedo());
    }

    Vec3 start(std::size_t lane, Vec3 direction) const {
        return start_beside(point[lane], geometric_normal[lane], error[lane], direction);
    }
    OrientedBsdf<DiffuseBsdf> bsdf(std::size_t lane) const {
        return {Frame(shading_normal[lane]), geometric_normal[lane], Diffuse{reflectance[lane]}, {0, 0, side[lane]}};
    }
};

/// What the paths carry to their vertices.
struct CarriedLanes {
    ColorLanes throughput;
    Lanes<float> ray_fraction{}; ///< Of the rays from there that may find lights, those that are traced.
};

/// What sampled lights bring to the paths, if all of it arrives.
struct ReflectedLanes {
    Mask are_lit{};      ///< Otherwise nothing is reflected.
    Vec3Lanes start;     ///< Of the shadow ray, off the surface.
    Vec3Lanes direction; ///< As that of a Segment.
    ColorLanes radiance;
};
void reflect(const DiffuseLanes &surfaces, const CarriedLanes &carried, const LightSampleLanes &lights,
             ReflectedLanes &result);

/// How the paths go on.
struct ScatteredLanes {
    Mask are_set{};      ///< Otherwise nothing is scattered.
    Vec3Lanes start;     ///< Off the surface.
    Vec3Lanes direction; ///< Unit length.
    Lanes<float> pdf{};  ///< Of the direction, per solid angle.
};
void scatter(const DiffuseLanes &surfaces, const Lanes<Point2f> &numbers, ScatteredLanes &result);

} // namespace vantor
