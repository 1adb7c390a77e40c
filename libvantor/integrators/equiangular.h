// Equiangular sampling: points of a part of a ray, evenly by the angle under which a light sees them.
#pragma once

#include "libvantor/base/rounding.h"
#include "libvantor/lights/cone.h"

namespace vantor {

/// Of a light that shines from a single point, most of what arrives at a ray arrives next to the light. Kulla, Fajardo,
/// "Importance Sampling Techniques for Path Tracing in Participating Media", 2012, section 4.
class Equiangular {
  public:
    /// Nothing is sampled of a part that is empty.
    Equiangular(const Ray &ray, RayPart of, Vec3 light) : part(of) {
        nearest = dot(light - ray.origin, ray.direction);
        const Vec3 across = ray.origin + ray.direction * nearest - light;
        // Whatever the height, the pdf fits the choice; a ray that goes through the light is one next to it.
        height = std::max(vantor::length(across), rounding_of(light) + 64 * unit_roundoff * std::fabs(nearest));
        first = std::atan2(part.from - nearest, height);
        last = std::atan2(part.to - nearest, height);
    }

    /// False if rounding has left the part.
    bool sample(float u, float &distance) const {
        distance = nearest + height * std::tan(first + (last - first) * u);
        return distance > part.from && distance < part.to;
    }

    float pdf(float distance) const {
        if (!(distance >= part.from && distance <= part.to))
            return 0;
        const float beyond = distance - nearest;
        return height / ((last - first) * (height * height + beyond * beyond));
    }

  private:
    RayPart part;
    float nearest; // the distance along the ray to the point next to the light
    float height;  // of the light above that point
    float first;   // the angles from there to the part's ends
    float last;
};

} // namespace vantor
