// Tracer: rays against everything that is placed.
#pragma once

#include "libvantor/embree/hit.h"

#include <memory>
#include <span>
#include <vector>

namespace vantor {

struct BuiltScene;
class Interrupt;
struct Placement;
struct Instancer;
struct TriangleMesh;

/// The only place where Embree's rays are filled and its hits are read. Constant once it is made, and used by all
/// threads. The placements' objects have to outlive it.
class Tracer {
  public:
    /// Builds what rays are traced in. Throws Interrupted.
    static Tracer build(std::span<const Placement> placements, const Interrupt &interrupt);
    ~Tracer();
    Tracer(Tracer &&) noexcept;
    Tracer &operator=(Tracer &&) = delete;

    /// The first surface on each ray. Rays are coherent if neighbours start and go nearly alike.
    void intersect(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const;

    /// Whether there is anything on each of the ways.
    void occluded(std::span<const Segment> ways, std::span<char> are_occluded) const;

    /// The radius of a sphere around everything; 0 if there is nothing.
    float radius() const;

  private:
    Tracer(std::unique_ptr<const BuiltScene> scene, std::span<const Placement> placements);

    /// One lane of an Embree packet.
    template <class Packet> Hit decoded(const Packet &packet, std::size_t lane, const Ray &ray) const;

    // What it takes to turn Embree's normal of a placement into ours.
    struct Decoding {
        const TriangleMesh *smooth; // a mesh with normals; null otherwise
        Linear normals;             // world from object
        Vec3 offset;                // of points, likewise
        float front;                // -1 where a copy in world space is mirrored and its winding turned round
        bool is_instance;           // Embree's normal is in object space
        bool faces_rays;            // a ribbon, of which Embree gives the tangent instead, always in object space
        const Instancer *instancer; // the placement's instances; null if it has none
        unsigned halvings;          // 1 where two of Embree's triangles are one primitive, 0 otherwise
    };

    template <class Packet>
    void intersect_in_packets(std::span<const Ray> rays, bool are_coherent, std::span<Hit> hits) const;
    template <class Packet> void occluded_in_packets(std::span<const Segment> ways, std::span<char> are_occluded) const;

    std::unique_ptr<const BuiltScene> built;
    bool has_wide_packets;
    std::vector<Decoding> decodings; // for each placement
};

} // namespace vantor
