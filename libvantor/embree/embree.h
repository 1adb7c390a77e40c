// Embree: its header, and the calls in which its versions 3 and 4 differ.
#pragma once

#if VANTOR_EMBREE == 4 // set by the build
#include <embree4/rtcore.h>
#else
#include <embree3/rtcore.h>
#endif

namespace vantor {

class AccelerationStructure;
class CrossedSurfaces;

#if VANTOR_EMBREE == 4
using QueryContext = RTCRayQueryContext;
#else
using QueryContext = RTCIntersectContext;
#endif

/// What callbacks get to see of a query, wherever they are called. Rays may start on surfaces that they have crossed.
struct Query {
    QueryContext context; ///< First, as callbacks have its address.
    const AccelerationStructure *structure = nullptr;
    const CrossedSurfaces *const *crossed = nullptr; ///< By a ray's id; null if they have crossed nothing.
    bool finds_only_left = false; ///< Only surfaces that rays leave are looked for, not those that they enter.

    // Within one of many instances, hits have its numbers.
    bool is_in_instance = false;
    unsigned placement = 0;
    unsigned instance = 0;

    Query() {
#if VANTOR_EMBREE == 4
        rtcInitRayQueryContext(&context);
#else
        rtcInitIntersectContext(&context);
#endif
    }
    static Query &of(QueryContext *context) { return *reinterpret_cast<Query *>(context); }
};

namespace callbacks {
/// Refuses surfaces that the query's rays have crossed; in scenes that have the flag calls_query_filters.
void refuse_crossed(const RTCFilterFunctionNArguments *arguments);
} // namespace callbacks

/// Traces packets of rays. Version 3 takes a context for that, version 4 arguments; both say whether the rays are
/// coherent. `used` holds -1 for each ray that counts and 0 for the others.
class RayQuery {
  public:
#if VANTOR_EMBREE == 4
    explicit RayQuery(bool are_coherent) {
        rtcInitIntersectArguments(&arguments);
        rtcInitOccludedArguments(&occluded_arguments);
        coherence = are_coherent ? RTC_RAY_QUERY_FLAG_COHERENT : RTC_RAY_QUERY_FLAG_INCOHERENT;
        arguments.flags = coherence;
        arguments.context = &query.context;
        occluded_arguments.context = &query.context;
    }

    /// Of the next packet; null if its rays have crossed nothing.
    void set_crossed(const CrossedSurfaces *const *crossed) {
        query.crossed = crossed;
        const int filters = crossed ? RTC_RAY_QUERY_FLAG_INVOKE_ARGUMENT_FILTER : 0;
        arguments.filter = crossed ? callbacks::refuse_crossed : nullptr;
        arguments.flags = static_cast<RTCRayQueryFlags>(coherence | filters);
        occluded_arguments.filter = arguments.filter;
        occluded_arguments.flags = static_cast<RTCRayQueryFlags>(RTC_RAY_QUERY_FLAG_INCOHERENT | filters);
    }

    void intersect(const int *used, RTCScene scene, RTCRayHit8 &rays) { rtcIntersect8(used, scene, &rays, &arguments); }
    void intersect(const int *used, RTCScene scene, RTCRayHit16 &rays) {
        rtcIntersect16(used, scene, &rays, &arguments);
    }
    void occlude(const int *used, RTCScene scene, RTCRay8 &rays) {
        rtcOccluded8(used, scene, &rays, &occluded_arguments);
    }
    void occlude(const int *used, RTCScene scene, RTCRay16 &rays) {
        rtcOccluded16(used, scene, &rays, &occluded_arguments);
    }

    Query query;

  private:
    RTCRayQueryFlags coherence;
    RTCIntersectArguments arguments;
    RTCOccludedArguments occluded_arguments;
#else
    explicit RayQuery(bool are_coherent) {
        query.context.flags =
            are_coherent ? RTC_INTERSECT_CONTEXT_FLAG_COHERENT : RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT;
    }

    /// Of the next packet; null if its rays have crossed nothing.
    void set_crossed(const CrossedSurfaces *const *crossed) {
        query.crossed = crossed;
        query.context.filter = crossed ? callbacks::refuse_crossed : nullptr;
    }

    void intersect(const int *used, RTCScene scene, RTCRayHit8 &rays) {
        rtcIntersect8(used, scene, &query.context, &rays);
    }
    void intersect(const int *used, RTCScene scene, RTCRayHit16 &rays) {
        rtcIntersect16(used, scene, &query.context, &rays);
    }
    void occlude(const int *used, RTCScene scene, RTCRay8 &rays) { rtcOccluded8(used, scene, &query.context, &rays); }
    void occlude(const int *used, RTCScene scene, RTCRay16 &rays) { rtcOccluded16(used, scene, &query.context, &rays); }

    Query query;
#endif
};

/// Traces one ray, with a filter for its hits; in scenes that have the flag.
#if VANTOR_EMBREE == 4
inline constexpr RTCSceneFlags calls_query_filters = RTC_SCENE_FLAG_FILTER_FUNCTION_IN_ARGUMENTS;
inline void intersect_filtered(RTCScene scene, RTCRayHit &ray, RTCFilterFunctionN filter) {
    Query query;
    RTCIntersectArguments arguments;
    rtcInitIntersectArguments(&arguments);
    arguments.context = &query.context;
    arguments.flags = RTC_RAY_QUERY_FLAG_INVOKE_ARGUMENT_FILTER;
    arguments.filter = filter;
    rtcIntersect1(scene, &ray, &arguments);
}
#else
inline constexpr RTCSceneFlags calls_query_filters = RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION;
inline void intersect_filtered(RTCScene scene, RTCRayHit &ray, RTCFilterFunctionN filter) {
    Query query;
    query.context.filter = filter;
    rtcIntersect1(scene, &query.context, &ray);
}
#endif

/// Traces one ray on in a scene, from within the callback of a user geometry, with the query's context.
#if VANTOR_EMBREE == 4
inline void intersect_within(RTCScene scene, Query &query, RTCRayHit &ray) {
    RTCIntersectArguments arguments;
    rtcInitIntersectArguments(&arguments);
    arguments.context = &query.context;
    if (query.crossed) {
        arguments.flags = RTC_RAY_QUERY_FLAG_INVOKE_ARGUMENT_FILTER;
        arguments.filter = callbacks::refuse_crossed;
    }
    rtcIntersect1(scene, &ray, &arguments);
}
inline void occlude_within(RTCScene scene, Query &query, RTCRay &ray) {
    RTCOccludedArguments arguments;
    rtcInitOccludedArguments(&arguments);
    arguments.context = &query.context;
    if (query.crossed) {
        arguments.flags = RTC_RAY_QUERY_FLAG_INVOKE_ARGUMENT_FILTER;
        arguments.filter = callbacks::refuse_crossed;
    }
    rtcOccluded1(scene, &ray, &arguments);
}
#else
inline void intersect_within(RTCScene scene, Query &query, RTCRayHit &ray) {
    rtcIntersect1(scene, &query.context, &ray);
}
inline void occlude_within(RTCScene scene, Query &query, RTCRay &ray) { rtcOccluded1(scene, &query.context, &ray); }
#endif

} // namespace vantor
