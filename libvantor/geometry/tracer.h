// Tracer: rays against everything that is placed.
#pragma once

#include "libvantor/geometry/hit.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vantor {

struct BuiltScene;
struct Placement;
struct TriangleMesh;

/// The only place where Embree's rays are filled and its hits are read. Constant once it is made, and used by all
/// threads. The placements' objects have to outlive it.
class Tracer {
  public:
    Tracer(std::unique_ptr<const BuiltScene> scene, std::span<const Placement> placements);
    ~Tracer();
    Tracer(Tracer &&) noexcept;
    Tracer &operator=(Tracer &&) = delete;

    /// The first surface on the ray; false if there is none.
    bool nearest(const Ray &ray, Hit &hit) const;

    /// Whether anything lies on the way from the point to point + reach * direction. The direction has any length.
    bool is_occluded(Vec3 from, Vec3 direction, float reach) const;

    /// The radius of a sphere around everything; 0 if there is nothing.
    float radius() const;

  private:
    // What it takes to turn Embree's normal of a placement into ours.
    struct Decoding {
        const TriangleMesh *smooth; // a mesh with normals; null otherwise
        Linear normals;             // world from object
        float front;                // -1 where a copy in world space is mirrored and its winding turned round
        bool is_instance;           // Embree's normal is in object space
    };

    std::unique_ptr<const BuiltScene> built;
    std::vector<Decoding> decodings; // for each placement
};

} // namespace vantor
