// Analytic: shapes of a few formulas, as Embree's user geometries.
#pragma once

#include "libvantor/description/object.h"
#include "libvantor/embree/all_hits.h"
#include "libvantor/embree/crossing.h"
#include "libvantor/shapes/canonical.h"

#include <cmath>
#include <limits>

namespace vantor {

/// What the callbacks get to see of a shape; has to outlive the geometry.
template <Analytic Kind> struct PlacedShape {
    const Kind *kind;
    CanonicalMap map;      ///< From canonical space to that of the geometry's scene.
    const Object *trimmed; ///< The object, if it is trimmed; the scene's space is its own then. Else null.
};

/// The point of a part that is nearest to one next to it, or nearly so: what rounding has moved off the surface lies on
/// it again.
template <Analytic Kind> Double3 nearest_on_surface(const void *placed_shape, std::uint32_t part, Double3 point) {
    const auto &placed = *static_cast<const PlacedShape<Kind> *>(placed_shape);
    return placed.map.point(on_surface(*placed.kind, part, placed.map.point_back(point)));
}

namespace callbacks {

// Visits the crossings within the ray's reach, the nearest first, as long as visit returns true.
template <Analytic Kind, class Arguments, class Visit> void
visit_crossings(const PlacedShape<Kind> &placed, const Arguments &arguments, RTCRayN *rays, unsigned i, Visit visit) {
    const unsigned n = arguments.N;
    const Query &query = Query::of(arguments.context);
    const unsigned id = RTCRayN_id(rays, n, i);
    const auto is_met = [&](const Crossing &crossing, float t, Vec3 direction) {
        return !query.crossed || id == collecting_ray ||
               may_meet(query, id, arguments.geomID, arguments.context->instID[0], crossing.part, t,
                        dot(placed.map.normal(crossing.normal), Double3(direction)));
    };
    const Vec3 origin{RTCRayN_org_x(rays, n, i), RTCRayN_org_y(rays, n, i), RTCRayN_org_z(rays, n, i)};
    const Vec3 direction{RTCRayN_dir_x(rays, n, i), RTCRayN_dir_y(rays, n, i), RTCRayN_dir_z(rays, n, i)};
    for (const Crossing &crossing : crossings(*placed.kind, placed.map.ray_back(origin, direction))) {
        // As Embree will see it.
        const auto t = static_cast<float>(crossing.t);
        if (t > RTCRayN_tnear(rays, n, i) && t <= RTCRayN_tfar(rays, n, i) && is_met(crossing, t, direction) &&
            (!placed.trimmed || placed.trimmed->keeps(crossing.part, {}, origin + direction * t)) && !visit(crossing))
            return;
    }
}

// The first of them, if there is one.
template <Analytic Kind, class Arguments>
bool find(const PlacedShape<Kind> &placed, const Arguments &arguments, RTCRayN *rays, unsigned i, Crossing &found) {
    bool is_found = false;
    visit_crossings(placed, arguments, rays, i, [&](const Crossing &crossing) {
        found = crossing;
        is_found = true;
        return false;
    });
    return is_found;
}

// In floats, the square of a normal of another length might overflow.
template <Analytic Kind> Vec3 unit_normal(const PlacedShape<Kind> &placed, const Crossing &crossing) {
    return to_float(unit(placed.map.normal(crossing.normal)));
}

// Formulas and Embree round differently, so the box has some padding; a flat shape's as well.
inline RTCBounds padded(const std::array<Double3, 2> &box) {
    const Vec3 low = to_float(box[0]);
    const Vec3 high = to_float(box[1]);
    const float padding = 1e-6f * std::max(largest_coordinate(low), largest_coordinate(high));
    return {low.x - padding,  low.y - padding,  low.z - padding,  0,
            high.x + padding, high.y + padding, high.z + padding, 0};
}

template <Analytic Kind> void bounds(const RTCBoundsFunctionArguments *arguments) {
    const auto &placed = *static_cast<const PlacedShape<Kind> *>(arguments->geometryUserPtr);
    *arguments->bounds_o = padded(bounds_of(*placed.kind, placed.map));
}

template <Analytic Kind> void intersect(const RTCIntersectFunctionNArguments *arguments) {
    const auto &placed = *static_cast<const PlacedShape<Kind> *>(arguments->geometryUserPtr);
    const unsigned n = arguments->N;
    RTCRayN *rays = RTCRayHitN_RayN(arguments->rayhit, n);
    RTCHitN *hits = RTCRayHitN_HitN(arguments->rayhit, n);
    for (unsigned i = 0; i < n; ++i) {
        if (arguments->valid[i] != 0 && RTCRayN_id(rays, n, i) == collecting_ray) {
            visit_crossings(placed, *arguments, rays, i, [&](const Crossing &one) {
                const Vec3 normal = unit_normal(placed, one);
                all_hits.add({static_cast<float>(one.t),
                              {normal.x, normal.y, normal.z},
                              {},
                              one.part,
                              arguments->geomID,
                              arguments->context->instID[0]});
                return true;
            });
            continue;
        }
        Crossing crossing;
        if (arguments->valid[i] == 0 || !find(placed, *arguments, rays, i, crossing))
            continue;
        const Vec3 normal = unit_normal(placed, crossing);
        RTCRayN_tfar(rays, n, i) = static_cast<float>(crossing.t);
        RTCHitN_Ng_x(hits, n, i) = normal.x;
        RTCHitN_Ng_y(hits, n, i) = normal.y;
        RTCHitN_Ng_z(hits, n, i) = normal.z;
        RTCHitN_u(hits, n, i) = 0;
        RTCHitN_v(hits, n, i) = 0;
        RTCHitN_primID(hits, n, i) = crossing.part;
        RTCHitN_geomID(hits, n, i) = arguments->geomID;
        RTCHitN_instID(hits, n, i, 0) = arguments->context->instID[0];
    }
}

template <Analytic Kind> void occlude(const RTCOccludedFunctionNArguments *arguments) {
    const auto &placed = *static_cast<const PlacedShape<Kind> *>(arguments->geometryUserPtr);
    for (unsigned i = 0; i < arguments->N; ++i) {
        Crossing crossing;
        // Embree marks an occluded ray by a negative end.
        if (arguments->valid[i] != 0 && find(placed, *arguments, arguments->ray, i, crossing))
            RTCRayN_tfar(arguments->ray, arguments->N, i) = -std::numeric_limits<float>::infinity();
    }
}

} // namespace callbacks

/// Makes the user geometry the shape.
template <Analytic Kind> void set_callbacks(RTCGeometry geometry, const PlacedShape<Kind> &placed) {
    rtcSetGeometryUserPrimitiveCount(geometry, 1);
    // Embree's parameter has no const, but nothing writes.
    rtcSetGeometryUserData(geometry, const_cast<PlacedShape<Kind> *>(&placed));
    rtcSetGeometryBoundsFunction(geometry, callbacks::bounds<Kind>, nullptr);
    rtcSetGeometryIntersectFunction(geometry, callbacks::intersect<Kind>);
    rtcSetGeometryOccludedFunction(geometry, callbacks::occlude<Kind>);
}

} // namespace vantor
