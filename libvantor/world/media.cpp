// Media: in which bodies a point lies.
#include "libvantor/world/media.h"

namespace vantor {

MediumStack media_at(Vec3 point, const Tracer &tracer, std::span<const Placement> placements) {
    // In no direction that scenes like to have edges and symmetries in.
    const Vec3 direction = normalized({0.3713f, 0.8147f, 0.4451f});
    constexpr int most_crossings = 10000;

    std::vector<int> left;    // media that the ray leaves without having entered them
    std::vector<int> entered; // and those that it has
    Ray ray{point, direction};
    for (int i = 0; i < most_crossings; ++i) {
        Hit hit;
        tracer.intersect({&ray, 1}, false, {&hit, 1});
        if (!hit.exists)
            break;
        const int interior = placements[hit.placement].interior;
        if (interior >= 0) {
            if (dot(hit.geometric_normal, direction) < 0)
                entered.push_back(interior);
            else if (const auto own = std::ranges::find(entered, interior); own != entered.end())
                entered.erase(own);
            else
                left.push_back(interior);
        }
        ray.origin = hit.origin_towards(direction);
    }

    // What is left first lies innermost.
    MediumStack media;
    for (auto medium = left.rbegin(); medium != left.rend(); ++medium)
        media.enter(*medium);
    return media;
}

} // namespace vantor
