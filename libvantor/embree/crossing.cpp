// Crossing: whether a ray may meet a surface, or has crossed it where it starts.
#include "libvantor/embree/crossing.h"

#include "libvantor/embree/acceleration_structure.h"

namespace vantor {

bool may_meet(const Query &query, unsigned ray_id, unsigned geometry, unsigned instance, unsigned primitive,
              float distance, double product) {
    const unsigned outer = instance != RTC_INVALID_GEOMETRY_ID ? instance : geometry;
    const unsigned placement = query.is_in_instance ? query.placement : outer;
    const HitDecoding &decoding = query.structure->decoding(placement);
    const bool has_sides = !decoding.format.faces_rays;
    const bool is_left = product * decoding.front > 0;
    if (query.finds_only_left && !(is_left && has_sides))
        return false;
    const MetSurface met{placement,
                         query.is_in_instance ? query.instance : 0,
                         decoding.format.primitive_of(primitive),
                         is_left,
                         has_sides,
                         decoding.format.has_bodies};
    return !query.crossed[ray_id]->holds(met, distance);
}

void callbacks::refuse_crossed(const RTCFilterFunctionNArguments *arguments) {
    const Query &query = Query::of(arguments->context);
    RTCRayN *ray = arguments->ray;
    RTCHitN *hit = arguments->hit;
    const unsigned n = arguments->N;
    for (unsigned i = 0; i < n; ++i) {
        if (arguments->valid[i] != -1)
            continue;
        const Vec3 direction{RTCRayN_dir_x(ray, n, i), RTCRayN_dir_y(ray, n, i), RTCRayN_dir_z(ray, n, i)};
        const Vec3 normal{RTCHitN_Ng_x(hit, n, i), RTCHitN_Ng_y(hit, n, i), RTCHitN_Ng_z(hit, n, i)};
        // In floats, the product of small triangles might underflow.
        const double product = dot(Double3(normal), Double3(direction));
        if (!may_meet(query, RTCRayN_id(ray, n, i), RTCHitN_geomID(hit, n, i), RTCHitN_instID(hit, n, i, 0),
                      RTCHitN_primID(hit, n, i), RTCRayN_tfar(ray, n, i), product))
            arguments->valid[i] = 0;
    }
}

} // namespace vantor
