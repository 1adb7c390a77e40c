// Shadow rays: how much of the sampled light arrives.
#include "libvantor/integrators/shadow_rays.h"

#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// Where every surface is opaque, a shadow ray is either blocked or stays in the medium in which it starts.
void transmit_in_one_step(const ShadowRays &shadow_rays, const World &world, std::vector<Color> &fractions) {
    std::vector<char> are_occluded(shadow_rays.size());
    world.tracer.occluded(shadow_rays.segments, are_occluded);
    for (std::size_t i = 0; i < shadow_rays.size(); ++i) {
        if (are_occluded[i]) {
            fractions[i] = {};
        } else if (shadow_rays.media[i].innermost() != MediumStack::none) {
            const Segment &segment = shadow_rays.segments[i];
            fractions[i] =
                world.media_of(shadow_rays.media[i]).transmittance(segment.reach * length(segment.direction));
        }
    }
}

// A shadow ray on its way from surface to surface.
struct Walk {
    std::size_t shadow_ray;
    Ray ray;
    float remaining; // distance to the light
    MediumStack media;
};

// Goes to the next surface and through it, or to the light. Returns whether there is more to go.
bool advance(Walk &walk, const Hit &hit, const World &world, Color &fraction) {
    const bool arrives = !hit.exists || hit.distance >= walk.remaining;
    if (walk.media.innermost() != MediumStack::none)
        fraction *= world.media_of(walk.media).transmittance(arrives ? walk.remaining : hit.distance);
    if (arrives)
        return false;
    fraction = fraction * (1 - opacity_at(hit, walk.ray.direction, world));
    if (is_black(fraction))
        return false;
    cross_surface(walk.media, world.placements[hit.placement], hit, walk.ray.direction);
    walk.ray.origin = hit.origin_towards(walk.ray.direction);
    walk.remaining -= hit.distance;
    return true;
}

} // namespace

void transmit(const ShadowRays &shadow_rays, const World &world, std::vector<Color> &fractions) {
    fractions.assign(shadow_rays.size(), {1, 1, 1});
    if (world.is_opaque) {
        transmit_in_one_step(shadow_rays, world, fractions);
        return;
    }

    std::vector<Walk> walks;
    walks.reserve(shadow_rays.size());
    for (std::size_t i = 0; i < shadow_rays.size(); ++i) {
        const Segment &segment = shadow_rays.segments[i];
        const float stretch = length(segment.direction);
        if (!(stretch >= std::numeric_limits<float>::min())) // a light that touches the point
            continue;
        walks.push_back(
            {i, {segment.from, segment.direction * (1 / stretch)}, segment.reach * stretch, shadow_rays.media[i]});
    }
    // So many surfaces, one behind the other, are taken for opaque.
    constexpr int most_surfaces = 1000;
    std::vector<Ray> rays(walks.size());
    std::vector<Hit> hits(walks.size());
    for (int step = 0; !walks.empty(); ++step) {
        for (std::size_t i = 0; i < walks.size(); ++i)
            rays[i] = walks[i].ray;
        world.tracer.intersect(std::span(rays).first(walks.size()), false, hits);
        std::size_t still_going = 0;
        for (std::size_t i = 0; i < walks.size(); ++i)
            if (advance(walks[i], hits[i], world, fractions[walks[i].shadow_ray]))
                walks[still_going++] = walks[i];
        walks.resize(still_going);
        if (step == most_surfaces) {
            for (const Walk &walk : walks)
                fractions[walk.shadow_ray] = {};
            return;
        }
    }
}

} // namespace vantor
