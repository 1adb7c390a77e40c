// Instancer: many instances of one object, as one of Embree's user geometries.
#pragma once

#include "libvantor/description/instance.h"
#include "libvantor/embree/all_hits.h"
#include "libvantor/shapes/canonical.h"

#include <limits>
#include <vector>

namespace vantor {

/// What the callbacks get to see; has to outlive the geometry. An instance takes 48 bytes here and some 90 in Embree.
struct Instancer {
    /// Back from an instance.
    struct Inverse {
        Linear linear;
        Vec3 offset; ///< Of the map from the object.

        /// Of normals, from the object: the transposed inverse.
        Linear normals() const { return transposed(linear); }
    };

    RTCScene scene; ///< Of the object.
    Vec3 low;       ///< The corners of a box around it.
    Vec3 high;
    const std::vector<Instance> *instances;
    VtTransform world_from_object;
    std::vector<Inverse> inverses{}; ///< Of each instance.

    /// A point of the object, at one of the instances.
    Double3 point(std::uint32_t instance, Double3 p) const {
        const Instance &to = (*instances)[instance];
        const Double3 placed = Double3(to.linear.row0) * p.x + Double3(to.linear.row1) * p.y +
                               Double3(to.linear.row2) * p.z + Double3(to.offset);
        const VtVector3 result = transformed_point({placed.x, placed.y, placed.z}, world_from_object);
        return {result[0], result[1], result[2]};
    }
};

namespace callbacks {

// A box around the box of the object. Instances without a usable inverse have no bounds; Embree then leaves them out.
inline void bounds_of_instance(const RTCBoundsFunctionArguments *arguments) {
    const auto &instancer = *static_cast<const Instancer *>(arguments->geometryUserPtr);
    const Instancer::Inverse &inverse = instancer.inverses[arguments->primID];
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const Linear &back = inverse.linear;
    if (!is_finite(back.row0 + back.row1 + back.row2)) {
        *arguments->bounds_o = {infinity, infinity, infinity, 0, -infinity, -infinity, -infinity, 0};
        return;
    }
    const Affine map =
        to_float(Compose((*instancer.instances)[arguments->primID].transform(), instancer.world_from_object));
    const Vec3 middle = map.point((instancer.low + instancer.high) * 0.5f);
    const Vec3 half = (instancer.high - instancer.low) * 0.5f;
    const auto [x, y, z] = map.linear;
    const auto extent = [&](float a, float b, float c) {
        return std::fabs(a) * half.x + std::fabs(b) * half.y + std::fabs(c) * half.z;
    };
    Vec3 reach{extent(x.x, y.x, z.x), extent(x.y, y.y, z.y), extent(x.z, y.z, z.z)};
    // Rays are rounded on their way into the object.
    const float padding = 2e-6f * (largest_coordinate(middle) + largest_coordinate(reach));
    reach = reach + Vec3{padding, padding, padding};
    const Vec3 low = middle - reach;
    const Vec3 high = middle + reach;
    *arguments->bounds_o = {low.x, low.y, low.z, 0, high.x, high.y, high.z, 0};
}

inline RTCRay ray_into(const Instancer::Inverse &inverse, RTCRayN *rays, unsigned n, unsigned i) {
    const Vec3 origin = inverse.linear(
        Vec3{RTCRayN_org_x(rays, n, i), RTCRayN_org_y(rays, n, i), RTCRayN_org_z(rays, n, i)} - inverse.offset);
    const Vec3 direction =
        inverse.linear({RTCRayN_dir_x(rays, n, i), RTCRayN_dir_y(rays, n, i), RTCRayN_dir_z(rays, n, i)});
    RTCRay ray;
    ray.org_x = origin.x;
    ray.org_y = origin.y;
    ray.org_z = origin.z;
    ray.tnear = RTCRayN_tnear(rays, n, i);
    ray.dir_x = direction.x;
    ray.dir_y = direction.y;
    ray.dir_z = direction.z;
    ray.time = 0;
    ray.tfar = RTCRayN_tfar(rays, n, i);
    ray.mask = ~0u;
    ray.id = RTCRayN_id(rays, n, i);
    ray.flags = 0;
    return ray;
}

// As long as it lives, the hits of a query are in one of many instances.
class WithinInstance {
  public:
    WithinInstance(Query &of, unsigned placement, unsigned instance) : query(of) {
        query.is_in_instance = true;
        query.placement = placement;
        query.instance = instance;
    }
    ~WithinInstance() { query.is_in_instance = false; }
    WithinInstance(const WithinInstance &) = delete;
    WithinInstance &operator=(const WithinInstance &) = delete;

  private:
    Query &query;
};

// A hit has the instance's index where others have the geometry's id, and the geometry's id where others have the
// instance's.
inline void intersect_instance(const RTCIntersectFunctionNArguments *arguments) {
    const auto &instancer = *static_cast<const Instancer *>(arguments->geometryUserPtr);
    const unsigned n = arguments->N;
    RTCRayN *rays = RTCRayHitN_RayN(arguments->rayhit, n);
    RTCHitN *hits = RTCRayHitN_HitN(arguments->rayhit, n);
    Query &query = Query::of(arguments->context);
    const WithinInstance within(query, arguments->geomID, arguments->primID);
    for (unsigned i = 0; i < n; ++i) {
        if (arguments->valid[i] == 0)
            continue;
        RTCRayHit inner{};
        inner.ray = ray_into(instancer.inverses[arguments->primID], rays, n, i);
        inner.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        inner.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
        if (inner.ray.id == collecting_ray) {
            all_hits.is_in_instance = true;
            all_hits.geometry = arguments->primID;
            all_hits.instance = arguments->geomID;
            collect_hits(instancer.scene, inner);
            all_hits.is_in_instance = false;
            continue;
        }
        intersect_within(instancer.scene, query, inner);
        if (inner.hit.geomID == RTC_INVALID_GEOMETRY_ID)
            continue;
        RTCRayN_tfar(rays, n, i) = inner.ray.tfar;
        RTCHitN_Ng_x(hits, n, i) = inner.hit.Ng_x;
        RTCHitN_Ng_y(hits, n, i) = inner.hit.Ng_y;
        RTCHitN_Ng_z(hits, n, i) = inner.hit.Ng_z;
        RTCHitN_u(hits, n, i) = inner.hit.u;
        RTCHitN_v(hits, n, i) = inner.hit.v;
        RTCHitN_primID(hits, n, i) = inner.hit.primID;
        RTCHitN_geomID(hits, n, i) = arguments->primID;
        RTCHitN_instID(hits, n, i, 0) = arguments->geomID;
    }
}

inline void occlude_instance(const RTCOccludedFunctionNArguments *arguments) {
    const auto &instancer = *static_cast<const Instancer *>(arguments->geometryUserPtr);
    Query &query = Query::of(arguments->context);
    const WithinInstance within(query, arguments->geomID, arguments->primID);
    for (unsigned i = 0; i < arguments->N; ++i) {
        if (arguments->valid[i] == 0)
            continue;
        RTCRay inner = ray_into(instancer.inverses[arguments->primID], arguments->ray, arguments->N, i);
        occlude_within(instancer.scene, query, inner);
        if (inner.tfar < 0)
            RTCRayN_tfar(arguments->ray, arguments->N, i) = -std::numeric_limits<float>::infinity();
    }
}

} // namespace callbacks

/// Makes the user geometry the object at all its instances, whose bounds are asked for when the scene is committed.
inline void set_callbacks(RTCGeometry geometry, Instancer &instancer) {
    rtcSetGeometryUserPrimitiveCount(geometry, static_cast<unsigned>(instancer.inverses.size()));
    rtcSetGeometryUserData(geometry, &instancer);
    rtcSetGeometryBoundsFunction(geometry, callbacks::bounds_of_instance, nullptr);
    rtcSetGeometryIntersectFunction(geometry, callbacks::intersect_instance);
    rtcSetGeometryOccludedFunction(geometry, callbacks::occlude_instance);
}

} // namespace vantor
