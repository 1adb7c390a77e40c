// Lights, frozen for a pass: what shines, and how to sample it.
#pragma once

#include "libvantor/base/random.h"
#include "libvantor/description/registry.h"
#include "libvantor/embree/hit.h"
#include "libvantor/lights/environment.h"

#include <span>

namespace vantor {

/// Light that may arrive at a point, if nothing is in the way.
struct LightSample {
    Vec3 to_light;      ///< Unit length.
    Vec3 end;           ///< The point that it comes from, clear of its surface; unused if is_distant.
    bool is_distant;    ///< Comes from infinitely far away.
    bool has_extent;    ///< Following a ray can find the light, too; not so a point or parallel light.
    Color contribution; ///< Radiance over pdf; of a light without extent its irradiance over the choice.
    float pdf;          ///< Per solid angle, choice included; above 0 and finite. Unused without extent.
};

/// A flat surface that shines on its front side: corner + u * edge_u + v * edge_v.
struct FlatEmitter {
    enum class Outline {
        Parallelogram, ///< u and v from 0 to 1.
        Triangle,      ///< Likewise, but u + v at most 1.
        Ring,          ///< u^2 + v^2 from the squared radius of the hole to 1; the corner is its centre.
    };

    Vec3 corner;
    Vec3 edge_u;
    Vec3 edge_v;
    Vec3 normal; ///< Unit length; the front.
    float area;
    Outline outline;
    float squared_hole;
    Color radiance;
};

/// A sphere that shines outwards; stretched by a transform it is an ellipsoid.
struct SphereEmitter {
    std::unique_ptr<const Affine> world_from_unit; ///< From the unit sphere; not in place, as most sources are smaller.
    Color radiance;
};

/// A placement whose points nothing draws: its light is found by following rays.
struct UnsampledEmitter {
    Color radiance;
};

/// A disk at infinity.
struct DiskSource {
    Vec3 to_light;             ///< Unit length; its middle.
    float one_minus_cos_theta; ///< One minus the cosine of the angle to its edge; above 0.
    Color radiance;
};

struct EnvironmentSource {
    std::unique_ptr<const Environment> environment; ///< Likewise.
};

/// All lights that are on. Constant once made.
class LightSet {
  public:
    /// The radius is that of the scene: it says how much of a distant light arrives.
    LightSet(std::span<const Light> lights, std::span<const Placement> placements, float scene_radius);

    bool is_empty() const { return sources.empty(); }
    bool has_choice() const { return sources.size() > 1; }

    /// One light, by its power for the most part, and a point of it. False where none of it can arrive.
    bool sample(Vec3 reference, double choice, Point2f numbers, LightSample &result) const;

    /// Where the light stands that sample() takes with this choice; null if it does not shine from a single point.
    const Vec3 *position_of(double choice) const;

    /// The emitter at a hit, which shines from the front; -1 if nothing shines there.
    int emitter_at(const Hit &hit) const {
        const Emitters &emitters = emitters_of[hit.placement];
        return emitters.first + static_cast<int>(hit.primitive) * emitters.step;
    }

    Color radiance(int emitter) const;

    /// The pdf with which sample(reference) would have chosen the emitter and the direction of the ray that hit it.
    float pdf(int emitter, Vec3 reference, Vec3 direction, const Hit &hit) const;

    /// Of every light at infinity that has an extent: what a ray sees of it that misses everything. Calls
    /// visit(radiance, pdf), with the pdf with which sample() would have chosen the light and this direction.
    template <class Visit> void for_each_infinite(Vec3 direction, Visit visit) const {
        for (const std::size_t source : infinite_lights) {
            Color radiance;
            const float direction_pdf = seen_at_infinity(source, direction, radiance);
            if (!is_black(radiance))
                visit(radiance, direction_pdf);
        }
    }

  private:
    using Source = std::variant<FlatEmitter, SphereEmitter, UnsampledEmitter, PointLight, SpotLight, DistantLight,
                                DiskSource, EnvironmentSource>;

    // A placement's emitters: one for each primitive in turn, or one for all, or none.
    struct Emitters {
        int first; // -1 if there are none
        int step;  // 1 if each primitive has one, 0 otherwise
    };

    Emitters add_emitters(const Placement &placement, Color radiance);
    void share_out(std::span<const std::size_t> firsts);
    void add_light(const Light &light, float scene_radius);
    void add_distant(const DistantLight &light, float scene_radius);
    void add_environment(const EnvironmentLight &light, float scene_radius);
    void add(Source source, float power);
    int chosen_source(double choice) const; // -1 for none
    double choice_pmf(std::size_t source) const { return shares_up_to[source + 1] - shares_up_to[source]; }

    // The pdf of the direction, and the radiance from there.
    float seen_at_infinity(std::size_t source, Vec3 direction, Color &radiance) const;

    std::vector<Source> sources;
    std::vector<double> shares_up_to;         // of the choice, cumulated: 0 first, 1 last; doubles for millions
    std::vector<Emitters> emitters_of;        // for each placement
    std::vector<std::size_t> infinite_lights; // with an extent
};

} // namespace vantor
