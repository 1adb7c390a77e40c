// Trimming: what Embree asks before it takes a hit on a trimmed object.
#pragma once

#include "libvantor/description/object.h"
#include "libvantor/embree/geometry.h"

namespace vantor {

/// What the callback gets to see; has to outlive the geometry, which lies in the object's space.
struct TrimmedObject {
    const Object *object;
    HitFormat format;
    std::shared_ptr<const void> data_of_format; ///< Has to outlive that.
};

namespace callbacks {

inline void refuse_trimmed(const RTCFilterFunctionNArguments *arguments) {
    const auto &trimmed = *static_cast<const TrimmedObject *>(arguments->geometryUserPtr);
    RTCRayN *rays = arguments->ray;
    RTCHitN *hits = arguments->hit;
    const unsigned n = arguments->N;
    for (unsigned i = 0; i < n; ++i) {
        if (arguments->valid[i] != -1)
            continue;
        const Vec3 origin{RTCRayN_org_x(rays, n, i), RTCRayN_org_y(rays, n, i), RTCRayN_org_z(rays, n, i)};
        const Vec3 direction{RTCRayN_dir_x(rays, n, i), RTCRayN_dir_y(rays, n, i), RTCRayN_dir_z(rays, n, i)};
        const Vec3 point = origin + direction * RTCRayN_tfar(rays, n, i);
        const Point2f on_primitive{RTCHitN_u(hits, n, i), RTCHitN_v(hits, n, i)};
        if (!trimmed.object->keeps(trimmed.format.primitive_of(RTCHitN_primID(hits, n, i)), on_primitive, point))
            arguments->valid[i] = 0;
    }
}

} // namespace callbacks

inline void set_filters(RTCGeometry geometry, const TrimmedObject &trimmed) {
    // Embree's parameter has no const, but nothing writes.
    rtcSetGeometryUserData(geometry, const_cast<TrimmedObject *>(&trimmed));
    rtcSetGeometryIntersectFilterFunction(geometry, callbacks::refuse_trimmed);
    rtcSetGeometryOccludedFilterFunction(geometry, callbacks::refuse_trimmed);
}

} // namespace vantor
