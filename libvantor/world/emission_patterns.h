// Emission patterns: area lights whose radiance differs from point to point.
#pragma once

#include "libvantor/description/registry.h"
#include "libvantor/embree/hit.h"
#include "libvantor/lights/emitters.h"

#include <optional>
#include <span>
#include <vector>

namespace vantor {

/// Which emitters have a pattern, and their radiance. Lights are chosen by the mean over each emitter; where a light
/// has been chosen, its points are sampled uniformly all the same.
class EmissionPatterns {
  public:
    bool is_empty() const { return all.empty(); }

    /// The emitters of a placement, which shine with the radiance times the pattern, and are the last of the lights.
    /// Makes each of them as bright as its mean. The placement and its pattern have to outlive it.
    void add(const Placement &placement, const Pattern &pattern, Color radiance, const EmitterRange &emitters,
             std::span<Light> lights);

    /// The radiance of an emitter at a hit; none if it has no pattern.
    std::optional<Color> radiance(std::uint32_t emitter, const Hit &hit) const;

    /// Likewise at a point of it that is seen from a distance.
    std::optional<Color> radiance(std::uint32_t emitter, const Light &light, Vec3 point, float distance) const;

  private:
    struct Patterned {
        std::uint32_t first; // of its lights, which come one after the other
        std::uint32_t end;
        int step; // as in EmitterRange
        const Placement *placement;
        const Pattern *pattern;
        Color radiance;
        Affine world_from_object; // without instances
    };
    const Patterned *of(std::uint32_t emitter) const;
    static Color at(const Patterned &patterned, const Affine &map, std::uint32_t primitive, Point2f on_primitive,
                    Vec3 point, float distance);
    static Color mean(const Patterned &patterned, std::uint32_t primitive, const Light &light, int points);

    std::vector<Patterned> all; // in the order of their lights
};

} // namespace vantor
