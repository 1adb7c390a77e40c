// Diffuse: the same radiance in all directions.
#pragma once

#include "libvantor/scattering/bsdf_sample.h"

namespace vantor {

/// Lambert's reflection, on both sides.
struct Diffuse {
    Color reflectance; ///< The fraction of light that is reflected, 0 to 1.

    BsdfValue evaluate(Vec3 out, Vec3 in) const {
        if (!(out.z * in.z > 0))
            return {};
        return {reflectance * inverse_pi, warp::cosine_hemisphere_pdf(std::fabs(in.z))};
    }

    bool sample(Vec3 out, Point2f numbers, float, BsdfSample &result) const {
        const Vec3 above = warp::cosine_hemisphere(numbers);
        if (!(above.z > 0))
            return false;
        const float side = std::copysign(1.0f, out.z);
        // Member by member: a copy of the whole would wait for the writing of its parts.
        result.in = {above.x, above.y, side * above.z};
        result.weight = reflectance;
        result.pdf = warp::cosine_hemisphere_pdf(above.z);
        result.is_specular = false;
        return true;
    }

    void tint(Color factor) { reflectance *= factor; }
    void set_color(Color color) { reflectance = color; }
    void set_roughness(float) {}
    Color albedo() const { return reflectance; }
    bool is_specular() const { return false; }
    bool transmits() const { return false; }
};

} // namespace vantor
