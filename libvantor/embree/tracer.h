// Tracer: rays against everything that is placed.
#pragma once

#include "libvantor/embree/ray_start.h"

#include <memory>
#include <span>
#include <vector>

namespace vantor {

class AccelerationStructure;
class Interrupt;
struct Placement;

/// How much has been built. For tests: how long it took depends on the machine.
struct BuildCounts {
    long top_levels = 0;
    long objects = 0; ///< That have a scene of their own.
};

/// The only place where Embree's rays are filled and its hits are read. All threads use it at once.
class Tracer {
  public:
    Tracer();
    ~Tracer();
    Tracer(Tracer &&) noexcept;
    Tracer &operator=(Tracer &&) = delete;

    /// Builds what rays are traced in, for these placements and on top of what is there: those of the last time have to
    /// be among the first of them, unchanged. Their objects have to outlive the tracer. Throws Interrupted; nothing can
    /// be traced then before another call.
    void update(std::span<const Placement> placements, const Interrupt &interrupt);

    /// The first surface on each ray. Rays are coherent if neighbours start and go nearly alike.
    void intersect(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const;

    /// Whether there is anything on each of the segments.
    void occluded(std::span<const Segment> segments, std::span<char> are_occluded) const;

    /// Whether any surface may be crossed. If so, rays have starts: the surfaces that they have crossed are not met
    /// again. Where several lie at one place, those of bodies that a ray leaves come before those that it enters.
    bool has_crossings() const { return may_cross; }
    void intersect(std::span<const Ray> rays, std::span<const RayStart> starts, bool are_coherent, std::span<Hit> hits,
                   std::span<const RayMask> masks = {}) const;
    void occluded(std::span<const Segment> segments, std::span<const RayStart> starts,
                  std::span<char> are_occluded) const;

    /// All surfaces on the ray, the nearest first. Not always possible: it has to be prepared for, and is where there
    /// are surfaces that may be crossed.
    bool can_intersect_all() const;
    std::vector<Hit> intersect_all(const Ray &ray) const;

    /// The radius of a sphere around everything; 0 if there is nothing.
    float radius() const;

    const BuildCounts &builds() const;

  private:
    /// Reads one lane of an Embree packet.
    template <class Packet> void decode(const Packet &packet, std::size_t lane, const Ray &ray, Hit &hit) const;

    /// Rays have starts and masks, or those are empty; here and below.
    template <class Packet> void intersect_in_packets(std::span<const Ray> rays, std::span<const RayStart> starts,
                                                      bool are_coherent, std::span<Hit> hits,
                                                      std::span<const RayMask> masks) const;
    template <class Packet> void leave_before_entering(std::span<const Ray> rays, std::span<const RayStart> starts,
                                                       std::span<Hit> hits, std::span<const RayMask> masks) const;
    template <class Packet> void occluded_in_packets(std::span<const Segment> segments,
                                                     std::span<const RayStart> starts,
                                                     std::span<char> are_occluded) const;

    std::unique_ptr<AccelerationStructure> structure;
    bool has_wide_packets;
    bool may_cross = false;
};

} // namespace vantor
