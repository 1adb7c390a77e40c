// Loaded before the others (LD_PRELOAD), stands between a renderer and Embree and counts the rays that are traced.
#include <atomic>
#include <dlfcn.h>

namespace {

std::atomic<long> rays{0};

// Lanes in use are -1.
template <int Width> void count(const int *valid) {
    long used = 0;
    for (int lane = 0; lane < Width; ++lane)
        used -= valid[lane];
    rays.fetch_add(used, std::memory_order_relaxed);
}

template <class Function> Function *next(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

// What is passed on as void * is Embree's: scene, context, and rays.
using TraceOne = void(void *, void *, void *);
using TracePacket = void(const int *, void *, void *, void *);

#define COUNT_ONE(name)                                                                                                \
    extern "C" __attribute__((visibility("default"))) void name(void *scene, void *context, void *ray) {               \
        static TraceOne *const embree = next<TraceOne>(#name);                                                         \
        rays.fetch_add(1, std::memory_order_relaxed);                                                                  \
        embree(scene, context, ray);                                                                                   \
    }

#define COUNT_PACKET(name, width)                                                                                      \
    extern "C" __attribute__((visibility("default"))) void name(const int *valid, void *scene, void *context,          \
                                                                void *packet) {                                        \
        static TracePacket *const embree = next<TracePacket>(#name);                                                   \
        count<width>(valid);                                                                                           \
        embree(valid, scene, context, packet);                                                                         \
    }

COUNT_ONE(rtcIntersect1)
COUNT_ONE(rtcOccluded1)
COUNT_PACKET(rtcIntersect4, 4)
COUNT_PACKET(rtcOccluded4, 4)
COUNT_PACKET(rtcIntersect8, 8)
COUNT_PACKET(rtcOccluded8, 8)
COUNT_PACKET(rtcIntersect16, 16)
COUNT_PACKET(rtcOccluded16, 16)

extern "C" __attribute__((visibility("default"))) long ray_counter_rays() { return rays; }
