// Equiangular sampling: points of a ray, evenly by the angle under which a light sees them.
#pragma once

#include "libvantor/base/rounding.h"

namespace vantor {

/// Of a light that shines from a single point, most of what arrives at a ray arrives next to the light. Kulla, Fajardo,
/// "Importance Sampling Techniques for Path Tracing in Participating Media", 2012, section 4.
class Equiangular {
  public:
    /// The length may be infinite.
    Equiangular(const Ray &ray, float its_length, Vec3 light) : length(its_length) {
        nearest = dot(light - ray.origin, ray.direction);
        const Vec3 across = ray.origin + ray.direction * nearest - light;
        // Whatever the height, the pdf fits the choice; a ray that goes through the light is one next to it.
        height = std::max(vantor::length(across), rounding_of(light) + 64 * unit_roundoff * std::fabs(nearest));
        first = std::atan2(-nearest, height);
        last = std::atan2(length - nearest, height);
    }

    /// False if rounding has left the ray.
    bool sample(float u, float &distance) const {
        distance = nearest + height * std::tan(first + (last - first) * u);
        return distance > 0 && distance < length;
    }

    float pdf(float distance) const {
        const float beyond = distance - nearest;
        return height / ((last - first) * (height * height + beyond * beyond));
    }

  private:
    float length;
    float nearest; // the distance along the ray to the point next to the light
    float height;  // of the light above that point
    float first;   // the angles from there to the ray's ends
    float last;
};

} // namespace vantor
