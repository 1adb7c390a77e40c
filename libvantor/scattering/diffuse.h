// Diffuse: the same radiance in all directions.
#pragma once

#include "libvantor/scattering/bsdf_concept.h"

namespace vantor {

class DiffuseBsdf;

/// Lambert's reflection, on both sides.
struct Diffuse {
    using Prepared = DiffuseBsdf;

    Color reflectance; ///< The fraction of light that is reflected, 0 to 1.

    Color albedo() const { return reflectance; }
    bool is_specular() const { return false; }
    bool transmits() const { return false; }
    void set_color(Color color) { reflectance = color; }
    void tint(Color factor) { reflectance *= factor; }
    void set_roughness(float) {}
};

/// Diffuse, prepared for a hit.
class DiffuseBsdf {
  public:
    DiffuseBsdf(const Diffuse &diffuse, Vec3 wo) : reflectance(diffuse.reflectance), wo_cosine(wo.z) {}

    BsdfValue evaluate(Vec3 wi) const {
        if (!(wo_cosine * wi.z > 0))
            return {};
        return {reflectance * inverse_pi, warp::cosine_hemisphere_pdf(std::fabs(wi.z))};
    }

    float pdf(Vec3 wi) const { return wo_cosine * wi.z > 0 ? warp::cosine_hemisphere_pdf(std::fabs(wi.z)) : 0.0f; }

    bool sample(Point2f u, float, BsdfSample &sample) const {
        const Vec3 above = warp::cosine_hemisphere(u);
        const float side = std::copysign(1.0f, wo_cosine);
        // Member by member: a copy of the whole would wait until its parts are stored.
        sample.wi = {above.x, above.y, side * above.z};
        sample.weight = reflectance;
        sample.pdf = warp::cosine_hemisphere_pdf(above.z);
        sample.is_specular = false;
        return above.z > 0;
    }

  private:
    Color reflectance;
    float wo_cosine; // negative on the back
};

} // namespace vantor
