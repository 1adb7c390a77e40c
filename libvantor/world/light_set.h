// Lights, frozen for a pass: what shines, and how to sample it.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/entities/registry.h"
#include "libvantor/geometry/hit.h"

#include <span>

namespace vantor {

/// Light that may arrive at a point, if nothing is in the way.
struct LightSample {
    Vec3 to_light;      ///< Unit length.
    Vec3 end;           ///< The point that it comes from, clear of its surface; unused if is_distant.
    bool is_distant;    ///< Comes from infinitely far away.
    bool has_extent;    ///< Following a ray can find the light, too; not so a point or distant light.
    Color contribution; ///< Radiance over density; of a light without extent its irradiance over the choice.
    float density;      ///< Per solid angle, choice included; above 0 and finite. Unused without extent.
};

/// A triangle or parallelogram that shines on its front side.
struct FlatEmitter {
    Vec3 corner;
    Vec3 edge_u;
    Vec3 edge_v;
    Vec3 normal; ///< Unit length; the front.
    float area;
    bool is_triangle;
    Color radiance;
};

/// A sphere that shines outwards; stretched by a transform it is an ellipsoid.
struct SphereEmitter {
    Affine world_from_unit; ///< From the unit sphere.
    Color radiance;
};

/// All lights that are on. Constant once made.
class LightSet {
  public:
    /// The radius is that of the scene: it says how much of a distant light arrives.
    LightSet(std::span<const Light> lights, std::span<const Placement> placements, float scene_radius);

    bool is_empty() const { return sources.empty(); }
    bool has_choice() const { return sources.size() > 1; }

    /// One light by its share of the power, and a point of it. False where none of it can arrive.
    bool sample(Vec3 reference, double choice, Pair numbers, LightSample &result) const;

    /// The first of a placement's emitters, which follow each other as its primitives do; -1 if it does not shine.
    int first_emitter(std::uint32_t placement) const { return first_emitters[placement]; }

    Color radiance(int emitter) const;

    /// The density with which sample(reference) would have chosen the emitter and the direction of the ray that hit it.
    float density(int emitter, Vec3 reference, Vec3 direction, const Hit &hit) const;

  private:
    using Source = std::variant<FlatEmitter, SphereEmitter, PointLight, DistantLight>;

    void add_emitters(const Placement &placement, Color radiance);
    void add(Source source, float power);
    double choice_density(std::size_t source) const { return shares_up_to[source + 1] - shares_up_to[source]; }

    std::vector<Source> sources;
    std::vector<double> shares_up_to; // of the power, cumulated: 0 first, 1 last; doubles for millions of emitters
    std::vector<int> first_emitters;  // for each placement
};

} // namespace vantor
