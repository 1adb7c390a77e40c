// Surface: what a path meets at a hit.
#pragma once

#include "libvantor/embree/hit.h"
#include "libvantor/world/world.h"

namespace vantor {

inline bool is_at_front(const Hit &hit, Vec3 arriving) { return dot(hit.geometric_normal, arriving) < 0; }

/// The share of light that meets the surface at a hit, 0 to 1; the rest passes straight through.
float opacity_at(const Hit &hit, Vec3 arriving, const World &world);

/// The surface at a hit: where its sides are, and how it scatters.
class Surface {
  public:
    Surface(const Hit &hit, Vec3 arriving, const World &world)
        : frame(hit.shading_normal), is_front(is_at_front(hit, arriving)), geometric_normal(hit.geometric_normal),
          bsdf(&world.placements[hit.placement].material->bsdf) {
        if (world.placements[hit.placement].varies())
            vary(hit, world);
        out = side_of(frame.local_from_world(-arriving), is_front);
    }
    Surface(const Surface &) = delete; // it may point into itself
    Surface &operator=(const Surface &) = delete;

    bool arrives_at_front() const { return is_front; }
    Vec3 shading_normal() const { return frame.z; } ///< On the front; bent where the material has bumps.
    bool is_specular() const { return vantor::is_specular(*bsdf); }
    bool is_diffuse() const { return std::holds_alternative<Diffuse>(*bsdf); }

    /// As opacity_at().
    float opacity() const { return opaque_share; }

    Color albedo() const { return vantor::albedo(*bsdf); }

    /// How much of the light from that direction goes back along the path, with the cosine of its direction.
    BsdfValue evaluate(Vec3 to_light) const {
        const Vec3 in = frame.local_from_world(to_light);
        if (!is_consistent(in.z, to_light))
            return {};
        BsdfValue found = vantor::evaluate(*bsdf, out, in);
        found.value = found.value * std::fabs(in.z);
        return found;
    }

    /// Whether a way on in that direction leaves the surface on the other side than the path arrives.
    bool is_crossed(Vec3 direction) const { return (dot(geometric_normal, direction) > 0) != is_front; }

    /// A direction to go on, in world space; false if there is none.
    bool sample(Point2f numbers, float choice, BsdfSample &result) const {
        if (!vantor::sample(*bsdf, out, numbers, choice, result))
            return false;
        const float z = result.in.z;
        result.in = frame.world_from_local(result.in);
        return is_consistent(z, result.in);
    }

  private:
    // What differs from point to point.
    void vary(const Hit &hit, const World &world);

    // Where the shading normal leans, part of each of its hemispheres lies on the other side of the surface.
    bool is_consistent(float z, Vec3 direction) const { return z * dot(geometric_normal, direction) > 0; }

    // The path arrives on the side of the surface itself; a leaning normal must not make it the other one.
    static Vec3 side_of(Vec3 out, bool is_front) {
        constexpr float grazing = 1e-4f;
        if ((out.z > 0) == is_front && out.z != 0)
            return out;
        return normalized({out.x, out.y, is_front ? grazing : -grazing});
    }

    Frame frame; // of the shading normal
    bool is_front;
    Vec3 out;
    Vec3 geometric_normal;
    const Bsdf *bsdf;
    std::optional<Bsdf> varied; // what it points to where the material has a variation
    float opaque_share = 1;
};

} // namespace vantor
