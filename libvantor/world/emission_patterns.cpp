// Emission patterns: area lights whose radiance differs from point to point.
#include "libvantor/world/emission_patterns.h"

#include "libvantor/world/point_in_object.h"

#include <algorithm>

namespace vantor {

namespace {

// Patterns may have any value, even NaN.
float usable(float value) {
    constexpr float most = 1e18f; // far brighter than any light
    return value > 0 ? std::min(value, most) : 0.0f;
}
Color usable(Color color) { return {usable(color.r), usable(color.g), usable(color.b)}; }

// Asked by kind, not by member: a surface that lacks what a pattern needs of it does not compile.
template <class Kind>
concept IsSurface = !std::remove_cvref_t<Kind>::is_delta && !std::remove_cvref_t<Kind>::is_infinite;
template <class Kind>
concept IsSampledSurface = IsSurface<Kind> && !std::same_as<std::remove_cvref_t<Kind>, UnsampledEmitter>;

// Of a point of an emitter, as Embree has it: of those shapes that ask for it.
Point2f on_primitive(const Light &light, Vec3 point) {
    const auto *flat = std::get_if<FlatEmitter>(&light);
    return flat ? flat->coordinates(point) : Point2f();
}

} // namespace

void EmissionPatterns::add(const Placement &placement, const Pattern &pattern, Color radiance,
                           const EmitterRange &emitters, std::span<Light> lights) {
    const auto first = static_cast<std::uint32_t>(emitters.first);
    const auto end = static_cast<std::uint32_t>(lights.size());
    const Patterned &patterned =
        all.emplace_back(Patterned{first, end, emitters.step, &placement, &pattern, radiance,
                                   placement.instances ? Affine() : to_float(placement.world_from_object)});
    // The more emitters, the less each of them matters.
    constexpr std::uint32_t points_in_all = 1 << 20;
    const int points = static_cast<int>(std::clamp(points_in_all / (end - first), 4u, 1024u));
    std::vector<Color> means;
    means.reserve(end - first);
    Color sum;
    for (std::uint32_t i = first; i < end; ++i)
        sum += means.emplace_back(
            mean(patterned, (i - first) * static_cast<std::uint32_t>(emitters.step), lights[i], points));
    // What is bright between the points is not to be found by paths alone.
    const Color least = sum * (0.01f / static_cast<float>(end - first));
    for (std::uint32_t i = first; i < end; ++i)
        std::visit(
            [&](auto &light) {
                if constexpr (IsSurface<decltype(light)>)
                    light.emitted = radiance * (means[i - first] + least);
            },
            lights[i]);
}

Color EmissionPatterns::mean(const Patterned &patterned, std::uint32_t primitive, const Light &light, int points) {
    Color sum;
    for (int i = 0; i < points; ++i) {
        // Multiples of the powers of the plastic number: a lattice that is even in all sizes.
        const auto fraction = [i](double step) {
            const double x = 0.5 + step * i;
            return static_cast<float>(x - std::floor(x));
        };
        const Point2f numbers{fraction(0.7548776662466927), fraction(0.5698402909980532)};
        const std::optional<Vec3> point = std::visit(
            [&](const auto &emitter) -> std::optional<Vec3> {
                if constexpr (IsSampledSurface<decltype(emitter)>)
                    return emitter.point(numbers);
                else
                    return {};
            },
            light);
        if (!point)
            return {}; // it is never sampled
        const Point2f coordinates = on_primitive(light, *point);
        const PointInObject in_object(patterned.placement->object->shape, primitive, coordinates,
                                      patterned.world_from_object.point_back(*point), 0);
        sum += usable(evaluate(*patterned.pattern, in_object.at));
    }
    return sum * (1 / static_cast<float>(points));
}

const EmissionPatterns::Patterned *EmissionPatterns::of(std::uint32_t emitter) const {
    const auto next = std::ranges::upper_bound(all, emitter, {}, &Patterned::first);
    if (next == all.begin())
        return nullptr;
    const Patterned &found = *std::prev(next);
    return emitter < found.end ? &found : nullptr;
}

Color EmissionPatterns::at(const Patterned &patterned, const Affine &map, std::uint32_t primitive, Point2f on_primitive,
                           Vec3 point, float distance) {
    const float scale = std::cbrt(std::fabs(map.determinant));
    const PointInObject in_object(patterned.placement->object->shape, primitive, on_primitive, map.point_back(point),
                                  pixel_angle * distance / scale);
    return patterned.radiance * usable(evaluate(*patterned.pattern, in_object.at));
}

std::optional<Color> EmissionPatterns::radiance(std::uint32_t emitter, const Hit &hit) const {
    const Patterned *patterned = of(emitter);
    if (!patterned)
        return {};
    const Placement &placement = *patterned->placement;
    const Affine map = placement.instances ? placement.map(hit.instance) : patterned->world_from_object;
    return at(*patterned, map, hit.primitive, hit.on_primitive, hit.point, hit.distance);
}

std::optional<Color> EmissionPatterns::radiance(std::uint32_t emitter, const Light &light, Vec3 point,
                                                float distance) const {
    const Patterned *patterned = of(emitter);
    if (!patterned)
        return {};
    const std::uint32_t primitive = (emitter - patterned->first) * static_cast<std::uint32_t>(patterned->step);
    return at(*patterned, patterned->world_from_object, primitive, on_primitive(light, point), point, distance);
}

} // namespace vantor
