// Media: in which bodies a point lies.
#include "libvantor/world/media.h"

#include <unordered_map>

namespace vantor {

namespace {

// The bodies that a ray leaves without having entered them are those that it starts in.
class BodiesAround {
  public:
    void cross(const Hit &hit, Vec3 direction, std::span<const Placement> placements) {
        const int interior = placements[hit.placement].interior;
        if (interior < 0)
            return;
        int &inside = entered[interior];
        if (dot(hit.geometric_normal, direction) < 0)
            ++inside;
        else if (inside > 0)
            --inside;
        else
            left.push_back(interior);
    }

    MediumStack media() const {
        // What is left first lies innermost.
        MediumStack result;
        for (auto medium = left.rbegin(); medium != left.rend(); ++medium)
            result.enter(*medium);
        return result;
    }

  private:
    std::vector<int> left;                // media
    std::unordered_map<int, int> entered; // how many bodies of each medium the ray is in that it has entered itself
};

} // namespace

MediumStack media_at(Vec3 point, const Tracer &tracer, std::span<const Placement> placements) {
    // In no direction that scenes like to have edges and symmetries in.
    const Vec3 direction = normalized({0.3713f, 0.8147f, 0.4451f});
    constexpr int most_crossings = 10000;
    // Each ray meets the bounds of all the bodies that the point lies in: for many of them, one that finds all of their
    // surfaces takes less time.
    const int most_steps = tracer.can_intersect_all() ? 32 : most_crossings;

    BodiesAround bodies;
    const auto cross = [&](const Hit &hit) {
        if (!placements[hit.placement].is_hidden)
            bodies.cross(hit, direction, placements);
    };
    Ray ray{point, direction};
    RayStart start{point};
    for (int i = 0; i < most_steps; ++i) {
        Hit hit;
        tracer.intersect({&ray, 1}, {&start, 1}, false, {&hit, 1});
        if (!hit.exists)
            return bodies.media();
        cross(hit);
        start = start_from(hit, direction, start.crossed, direction);
        ray.origin = start.origin;
    }
    // All that is met from here on was not before.
    ray.origin = ray.origin + direction * start.crossed.reach();
    if (tracer.can_intersect_all())
        for (const Hit &hit : tracer.intersect_all(ray))
            cross(hit);
    return bodies.media();
}

} // namespace vantor
