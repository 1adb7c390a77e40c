// Ray start: where a ray leaves a surface, and what it has crossed there.
#pragma once

#include "libvantor/embree/hit.h"

namespace vantor {

/// A surface that a ray may meet.
struct MetSurface {
    std::uint32_t placement;
    std::uint32_t instance;
    std::uint32_t primitive;
    bool is_left;   ///< Rather than entered.
    bool has_sides; ///< Or is the same from either.
    bool is_body;   ///< Its primitive is a body by itself.
};

/// The surfaces that a ray has crossed where it starts, and is not to meet again: which body's, and whether that was
/// left or entered. Another body's surface at the same place is met, and so is the other side of the same body.
class CrossedSurfaces {
  public:
    bool is_empty() const { return count == 0; }

    /// How far along the ray they lie at most.
    float reach() const { return largest_distance; }

    void add(const Hit &hit, bool is_left, float distance) {
        // Only so many are kept: the first one is dropped, which lies farthest behind.
        if (count == capacity) {
            for (std::uint32_t i = 1; i < capacity; ++i)
                all[i - 1] = all[i];
            --count;
        }
        all[count++] = {hit.placement, hit.instance, hit.primitive & 0x7fffffffu, is_left};
        largest_distance = distance;
    }

    /// A surface that has no sides is met from either. One of an object whose primitives are bodies belongs to that of
    /// its primitive alone.
    bool holds(const MetSurface &met, float distance) const {
        if (!(distance <= largest_distance))
            return false;
        for (std::uint32_t i = 0; i < count; ++i)
            if (all[i].placement == met.placement && all[i].instance == met.instance &&
                (!met.is_body || all[i].primitive == met.primitive) &&
                (all[i].is_left == met.is_left || !met.has_sides))
                return true;
        return false;
    }

  private:
    struct Crossed {
        std::uint32_t placement;
        std::uint32_t instance;
        std::uint32_t primitive : 31; // there is no array of more elements
        std::uint32_t is_left : 1;
    };
    static constexpr std::uint32_t capacity = 4;

    Crossed all[capacity]{};
    std::uint32_t count = 0;
    float largest_distance = 0;
};

/// Where a ray starts.
struct RayStart {
    Vec3 origin;
    float lead = 0;   ///< How far along the ray the point lies that it leaves: the origin is next to that.
    float margin = 0; ///< How far along the ray, from that point, it is clear of the surface.
    CrossedSurfaces crossed{};
};

/// The length along a ray of unit direction on which it is within the rounding of a surface.
inline float margin_of(const Hit &hit, Vec3 direction) {
    return hit.error / std::max(std::fabs(dot(hit.geometric_normal, direction)), 1e-3f);
}

/// The start of a ray towards the direction from a hit of another one, where surfaces may be crossed: that came along
/// `arriving`, and had crossed some surfaces itself where it started.
///
/// Bodies may touch, so that several surfaces lie at one place. What crosses one of them has all others still before
/// it: it starts in front of them, and has the crossed one on its list. What is thrown back between two of them has
/// those before it that the other ray has crossed.
inline RayStart start_from(const Hit &hit, Vec3 arriving, const CrossedSurfaces &before, Vec3 direction) {
    const float side = dot(hit.geometric_normal, direction);
    const bool is_crossing = side * dot(hit.geometric_normal, arriving) > 0;
    const bool is_between = !before.is_empty() && hit.distance <= 2 * before.reach();
    RayStart start{hit.origin_towards(is_crossing || is_between ? -direction : direction)};
    start.lead = dot(hit.point - start.origin, direction);
    start.margin = margin_of(hit, direction);
    if (is_crossing && is_between)
        start.crossed = before;
    if (is_crossing || is_between)
        start.crossed.add(hit, side > 0, start.crossed.reach() + 4 * start.margin);
    return start;
}

} // namespace vantor
