// Shadow rays: how much of the sampled light arrives.
#include "libvantor/integrators/shadow_rays.h"

#include "libvantor/world/surface.h"

namespace vantor {

namespace {

// Gives the shadow ray a direction of unit length, so that lengths along it are those of the world. False if the light
// touches the point; the shadow ray stays as it is.
bool normalize(Segment &segment) {
    const float stretch = length(segment.direction);
    if (!(stretch >= std::numeric_limits<float>::min()))
        return false;
    segment = {segment.from, segment.direction * (1 / stretch), segment.reach * stretch};
    return true;
}

// Where every surface is opaque, a shadow ray is either blocked or stays in the medium in which it starts.
void transmit_in_one_step(const ShadowRays &shadow_rays, const World &world, std::vector<Color> &fractions) {
    std::vector<char> are_occluded(shadow_rays.size());
    std::vector<Segment> segments = shadow_rays.segments;
    for (Segment &segment : segments)
        normalize(segment);
    world.tracer.occluded(segments, shadow_rays.starts, are_occluded);
    for (std::size_t i = 0; i < shadow_rays.size(); ++i) {
        if (are_occluded[i])
            fractions[i] = {};
        else if (shadow_rays.media[i].innermost() != MediumStack::none)
            fractions[i] = world.media_of(shadow_rays.media[i])
                               .transmittance(std::max(0.0f, segments[i].reach - shadow_rays.starts[i].lead));
    }
}

// A shadow ray on its way from surface to surface.
struct Walk {
    std::size_t shadow_ray;
    Vec3 direction;
    Vec3 end; // of the ray, where it has one
    bool has_end;
    RayStart start;
    MediumStack media;

    float reach() const { return has_end ? dot(end - start.origin, direction) : INFINITY; }
};

// Goes to the next surface and through it, or to the light. Returns whether there is more to go. Each step goes on from
// the surface itself, and how far the light is follows from there, so that nothing adds up.
bool advance(Walk &walk, const Hit &hit, const World &world, Color &fraction) {
    const float reach = walk.reach();
    const bool arrives = !hit.exists || hit.distance >= reach;
    if (walk.media.innermost() != MediumStack::none) {
        const float end = arrives ? reach : dot(hit.point - walk.start.origin, walk.direction);
        fraction *= world.media_of(walk.media).transmittance(std::max(0.0f, end - walk.start.lead));
    }
    if (arrives)
        return false;
    fraction = fraction * (1 - opacity_at(hit, walk.direction, world));
    if (is_black(fraction))
        return false;
    cross_surface(walk.media, world.placements[hit.placement], hit, walk.direction);
    walk.start = start_from(hit, walk.direction, walk.start.crossed, walk.direction);
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
        Segment segment = shadow_rays.segments[i];
        const bool has_end = std::isfinite(segment.reach);
        if (normalize(segment))
            walks.push_back({i, segment.direction, segment.from + segment.direction * (has_end ? segment.reach : 0),
                             has_end, shadow_rays.starts[i], shadow_rays.media[i]});
    }
    // So many surfaces, one behind the other, are taken for opaque.
    constexpr int most_surfaces = 1000;
    std::vector<Ray> rays;
    rays.reserve(walks.size());
    std::vector<RayStart> starts;
    starts.reserve(walks.size());
    std::vector<Hit> hits(walks.size());
    for (int step = 0; !walks.empty(); ++step) {
        rays.clear();
        starts.clear();
        for (const Walk &walk : walks) {
            rays.push_back({walk.start.origin, walk.direction});
            starts.push_back(walk.start);
        }
        world.tracer.intersect(rays, starts, false, hits);
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
