// Surface: what a path meets at a hit.
#pragma once

#include "libvantor/embree/hit.h"
#include "libvantor/world/world.h"

#include <optional>

namespace vantor {

inline bool is_at_front(const Hit &hit, Vec3 arriving) { return dot(hit.geometric_normal, arriving) < 0; }

/// The fraction of light that meets the surface at a hit, 0 to 1; the rest passes straight through.
float opacity_at(const Hit &hit, Vec3 arriving, const World &world);

/// A BSDF at a hit, prepared for the direction back along the path. Its directions are in world space.
template <PreparedBsdf Local> class OrientedBsdf {
  public:
    /// `wo` is in the frame of the shading normal.
    template <class Description>
    OrientedBsdf(const Frame &shading_frame, Vec3 surface_normal, const Description &description, Vec3 wo)
        : frame(shading_frame), geometric_normal(surface_normal), local(description, wo) {}

    /// How much of the light from `wi` goes back along the path: the value includes the cosine of `wi`.
    BsdfValue evaluate(Vec3 wi) const {
        const Vec3 local_wi = frame.local_from_world(wi);
        if (!is_consistent(local_wi.z, wi))
            return {};
        BsdfValue found = local.evaluate(local_wi);
        found.value = found.value * std::fabs(local_wi.z);
        return found;
    }

    /// Samples the direction in which the path goes on; false if there is none.
    bool sample(Point2f u, float uc, BsdfSample &sample) const {
        if (!local.sample(u, uc, sample))
            return false;
        const float z = sample.wi.z;
        sample.wi = frame.world_from_local(sample.wi);
        return is_consistent(z, sample.wi);
    }

  private:
    // Where the shading normal leans, part of each of its hemispheres lies on the other side of the surface.
    bool is_consistent(float z, Vec3 direction) const { return z * dot(geometric_normal, direction) > 0; }

    Frame frame; // of the shading normal
    Vec3 geometric_normal;
    Local local;
};
using SurfaceBsdf = OrientedBsdf<Bsdf>;

/// The surface at a hit: where its sides are, and what it is made of there.
class Surface {
  public:
    Surface(const Hit &hit, Vec3 arriving, const World &world)
        : normal(hit.shading_normal), geometric_normal(hit.geometric_normal), is_front(is_at_front(hit, arriving)),
          constant(&world.placements[hit.placement].material->bsdf) {
        if (world.placements[hit.placement].varies())
            vary(hit, world);
    }

    bool arrives_at_front() const { return is_front; }
    Vec3 shading_normal() const { return normal; } ///< On the front; bent where the material has bumps.
    bool is_specular() const { return vantor::is_specular(description()); }
    bool is_diffuse() const { return vantor::is_diffuse(description()); }
    bool transmits() const { return vantor::transmits(description()); }
    Color albedo() const { return vantor::albedo(description()); }

    /// What lights are chosen by at its hit: the side where the path arrives is lit, or both.
    LightSampleContext light_context(const Hit &hit) const {
        return {hit.point, transmits() ? Vec3() : is_front ? normal : -normal};
    }

    /// As opacity_at().
    float opacity() const { return opacity_here; }

    /// Whether a path that leaves in that direction is on the other side of the surface than where it arrives.
    bool is_crossed(Vec3 direction) const { return (dot(geometric_normal, direction) > 0) != is_front; }

    /// How it scatters light back along the path that has arrived so.
    SurfaceBsdf bsdf(Vec3 arriving) const {
        const Frame frame(normal);
        return {frame, geometric_normal, description(), on_arriving_side(frame.local_from_world(-arriving))};
    }

  private:
    // Applies what differs from point to point.
    void vary(const Hit &hit, const World &world);
    void follow_patterns(const Hit &hit, const World &world, const Variation &variation);

    const BsdfDescription &description() const { return varied ? *varied : *constant; }

    // A path arrives on the side that the geometric normal tells, even if the shading normal leans beyond it.
    Vec3 on_arriving_side(Vec3 wo) const {
        constexpr float grazing = 1e-4f;
        if ((wo.z > 0) == is_front && wo.z != 0)
            return wo;
        return normalized({wo.x, wo.y, is_front ? grazing : -grazing});
    }

    Vec3 normal; // for shading
    Vec3 geometric_normal;
    bool is_front;
    float opacity_here = 1;
    const BsdfDescription *constant;       // of the material
    std::optional<BsdfDescription> varied; // what is made of it here, where that differs
};

} // namespace vantor
