// Embree: its header, and the calls in which its versions 3 and 4 differ.
#pragma once

#if VANTOR_EMBREE == 4 // set by the build
#include <embree4/rtcore.h>
#else
#include <embree3/rtcore.h>
#endif

namespace vantor {

/// Traces packets of rays. Version 3 takes a context for that, version 4 arguments; both say whether the rays are
/// coherent. `used` holds -1 for each ray that counts and 0 for the others.
class RayQuery {
  public:
#if VANTOR_EMBREE == 4
    explicit RayQuery(bool are_coherent) {
        rtcInitIntersectArguments(&arguments);
        arguments.flags = are_coherent ? RTC_RAY_QUERY_FLAG_COHERENT : RTC_RAY_QUERY_FLAG_INCOHERENT;
    }

    void intersect(const int *used, RTCScene scene, RTCRayHit8 &rays) { rtcIntersect8(used, scene, &rays, &arguments); }
    void intersect(const int *used, RTCScene scene, RTCRayHit16 &rays) {
        rtcIntersect16(used, scene, &rays, &arguments);
    }
    void occlude(const int *used, RTCScene scene, RTCRay8 &rays) { rtcOccluded8(used, scene, &rays, nullptr); }
    void occlude(const int *used, RTCScene scene, RTCRay16 &rays) { rtcOccluded16(used, scene, &rays, nullptr); }

  private:
    RTCIntersectArguments arguments;
#else
    explicit RayQuery(bool are_coherent) {
        rtcInitIntersectContext(&context);
        context.flags = are_coherent ? RTC_INTERSECT_CONTEXT_FLAG_COHERENT : RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT;
    }

    void intersect(const int *used, RTCScene scene, RTCRayHit8 &rays) { rtcIntersect8(used, scene, &context, &rays); }
    void intersect(const int *used, RTCScene scene, RTCRayHit16 &rays) { rtcIntersect16(used, scene, &context, &rays); }
    void occlude(const int *used, RTCScene scene, RTCRay8 &rays) { rtcOccluded8(used, scene, &context, &rays); }
    void occlude(const int *used, RTCScene scene, RTCRay16 &rays) { rtcOccluded16(used, scene, &context, &rays); }

  private:
    RTCIntersectContext context;
#endif
};

/// Traces one ray, with a filter for its hits; in scenes that have the flag.
#if VANTOR_EMBREE == 4
inline constexpr RTCSceneFlags calls_query_filters = RTC_SCENE_FLAG_FILTER_FUNCTION_IN_ARGUMENTS;
inline void intersect_filtered(RTCScene scene, RTCRayHit &ray, RTCFilterFunctionN filter) {
    RTCIntersectArguments arguments;
    rtcInitIntersectArguments(&arguments);
    arguments.flags = RTC_RAY_QUERY_FLAG_INVOKE_ARGUMENT_FILTER;
    arguments.filter = filter;
    rtcIntersect1(scene, &ray, &arguments);
}
#else
inline constexpr RTCSceneFlags calls_query_filters = RTC_SCENE_FLAG_CONTEXT_FILTER_FUNCTION;
inline void intersect_filtered(RTCScene scene, RTCRayHit &ray, RTCFilterFunctionN filter) {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    context.filter = filter;
    rtcIntersect1(scene, &context, &ray);
}
#endif

/// Traces one ray on in a scene, from within the callback of a user geometry, with the context that it was given.
#if VANTOR_EMBREE == 4
inline void intersect_within(RTCScene scene, RTCRayQueryContext *context, RTCRayHit &ray) {
    RTCIntersectArguments arguments;
    rtcInitIntersectArguments(&arguments);
    arguments.context = context;
    rtcIntersect1(scene, &ray, &arguments);
}
inline void occlude_within(RTCScene scene, RTCRayQueryContext *context, RTCRay &ray) {
    RTCOccludedArguments arguments;
    rtcInitOccludedArguments(&arguments);
    arguments.context = context;
    rtcOccluded1(scene, &ray, &arguments);
}
#else
inline void intersect_within(RTCScene scene, RTCIntersectContext *context, RTCRayHit &ray) {
    rtcIntersect1(scene, context, &ray);
}
inline void occlude_within(RTCScene scene, RTCIntersectContext *context, RTCRay &ray) {
    rtcOccluded1(scene, context, &ray);
}
#endif

} // namespace vantor
