// All hits: every surface on a ray, not only the first, in one traversal.
#pragma once

#include "libvantor/embree/embree.h"

#include <vector>

namespace vantor {

/// A hit as Embree reports it.
struct EmbreeHit {
    float distance;
    float normal[3]; ///< Of any length.
    float on_primitive[2];
    unsigned primitive;
    unsigned geometry;
    unsigned instance;
};

/// What has been found on the ray that this thread is collecting hits of.
struct AllHits {
    std::vector<EmbreeHit> found;
    // Within one of many instances, hits have its numbers.
    bool is_in_instance = false;
    unsigned geometry = 0;
    unsigned instance = 0;

    void add(EmbreeHit hit) {
        if (is_in_instance) {
            hit.geometry = geometry;
            hit.instance = instance;
        }
        found.push_back(hit);
    }
};
inline thread_local AllHits all_hits;

/// The id of rays that all hits are wanted of. Others have their lane.
inline constexpr unsigned collecting_ray = ~0u;

namespace callbacks {

// Notes a hit and refuses it, so that the ray goes on.
inline void collect(const RTCFilterFunctionNArguments *arguments) {
    const unsigned n = arguments->N;
    for (unsigned i = 0; i < n; ++i) {
        if (arguments->valid[i] != -1)
            continue;
        all_hits.add({RTCRayN_tfar(arguments->ray, n, i),
                      {RTCHitN_Ng_x(arguments->hit, n, i), RTCHitN_Ng_y(arguments->hit, n, i),
                       RTCHitN_Ng_z(arguments->hit, n, i)},
                      {RTCHitN_u(arguments->hit, n, i), RTCHitN_v(arguments->hit, n, i)},
                      RTCHitN_primID(arguments->hit, n, i),
                      RTCHitN_geomID(arguments->hit, n, i),
                      RTCHitN_instID(arguments->hit, n, i, 0)});
        arguments->valid[i] = 0;
    }
}

} // namespace callbacks

/// Adds all hits of a ray whose id is collecting_ray. The scene has the flag calls_query_filters.
inline void collect_hits(RTCScene scene, RTCRayHit &ray) { intersect_filtered(scene, ray, callbacks::collect); }

} // namespace vantor
