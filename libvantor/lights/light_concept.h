// Light concept: what every type of light offers, and the samples that it gives.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/random.h"
#include "libvantor/lights/cone.h"
#include "libvantor/lights/light_bounds.h"

#include <concepts>
#include <type_traits>

namespace vantor {

/// A point of a light, or a direction to it, as the light itself samples it.
struct EmissionSample {
    Vec3 to_light;  ///< Unit length, from the reference point.
    Vec3 end;       ///< The sampled point, clear of its surface; unset by infinite lights.
    Color radiance; ///< That arrives from there; of a delta light the irradiance of a surface that faces it.
    float pdf;      ///< Per solid angle; unset by delta lights.
};

/// What a ray that leaves the scene finds of an infinite light.
struct SeenLight {
    Color radiance;
    float pdf; ///< With which sample() draws the ray's direction, per solid angle.
};

/// Every type of light.
///
/// - `is_delta`: all its light comes from one point or direction, so that only sample() finds it, never a ray.
/// - `is_infinite`: its light comes from infinitely far away, the same at every point of the scene.
/// - `bounds()`: how much of its light may arrive where. It only steers how often the light is chosen: the
///   intensity may be rough, but nothing may shine beyond the bounds. A light that is black by them is never sampled.
/// - `sample(reference, numbers, result)`: a point of the light as the reference point sees it, uniform numbers given.
///   False if none of its light can arrive there.
template <class Kind>
concept SamplableLight = requires(const Kind &light, Vec3 reference, Point2f numbers, EmissionSample &result) {
    { Kind::is_delta } -> std::convertible_to<bool>;
    { Kind::is_infinite } -> std::convertible_to<bool>;
    { light.bounds() } -> std::same_as<std::conditional_t<Kind::is_infinite, InfiniteLightBounds, LightBounds>>;
    { light.sample(reference, numbers, result) } -> std::same_as<bool>;
};

/// A finite delta light.
///
/// - `position` is the point that it shines from.
/// - `lit_part(ray, whole)`: in one piece, the points of that part of a ray that its light may reach.
template <class Kind>
concept PositionalLight = requires(const Kind &light, const Ray &ray, RayPart whole) {
    { light.position } -> std::convertible_to<Vec3>;
    { light.lit_part(ray, whole) } -> std::same_as<RayPart>;
};

/// A finite light with an extent: a surface of the scene, whose front shines.
///
/// - `emitted`: the radiance that leaves every point of it, in all directions; under a pattern, the mean of it.
/// - `radiance()`: the same.
/// - `pdf(reference, direction, point)`: with which sample(reference) draws the direction of a ray that hits the front
///   at the point, per solid angle.
/// - `point(numbers)`, unless it is never sampled: a point of it, uniform numbers given. Patterns ask for it.
template <class Kind>
concept EmissiveSurface = requires(const Kind &light, Vec3 reference, Vec3 direction, Vec3 point) {
    { light.emitted } -> std::same_as<const Color &>;
    { light.radiance() } -> std::same_as<Color>;
    { light.pdf(reference, direction, point) } -> std::same_as<float>;
};

/// An infinite light with an extent: `seen(direction)` is what a ray that leaves the scene finds there.
template <class Kind>
concept InfiniteLight = requires(const Kind &light, Vec3 direction) {
    { light.seen(direction) } -> std::same_as<SeenLight>;
};

/// Every type of light, with what its kind needs besides.
template <class Kind>
concept LightType = SamplableLight<Kind> &&
    (!Kind::is_delta || Kind::is_infinite ||
     PositionalLight<Kind>)&&(Kind::is_delta || Kind::is_infinite ||
                              EmissiveSurface<Kind>)&&(Kind::is_delta || !Kind::is_infinite || InfiniteLight<Kind>);

} // namespace vantor
