// The BSDFs that tests go through: every one of the vocabulary, and special cases.
#pragma once

#include "libvantor/scattering/bsdf.h"

#include <random>
#include <string>
#include <vector>

namespace bsdf_cases {

struct Case {
    std::string name;
    vantor::BsdfDescription bsdf;
};

inline constexpr vantor::Color white{1, 1, 1};

vantor::BsdfDescription with_roughness(vantor::BsdfDescription bsdf, float roughness);

/// Every type of the vocabulary, all defaults but in white, at several degrees of roughness where it has one; and what
/// is special about each: other indices, layers, mixtures.
const std::vector<Case> &all();

/// Those of which every sample is specular, and all others.
std::vector<Case> specular();
std::vector<Case> not_specular();

/// Directions towards which light leaves, on both sides: steep, slanting, grazing.
std::vector<vantor::Vec3> directions();

/// Independent random numbers, which the tests' estimates of errors assume.
class Numbers {
  public:
    float get_1d() { return vantor::sobol::unit_float(static_cast<std::uint32_t>(engine())); }
    vantor::Point2f get_2d() {
        const float u = get_1d();
        return {u, get_1d()};
    }

  private:
    std::mt19937 engine{1};
};

/// What radiance is divided by to be power: the squared ratio of the refractive indices of the two sides.
double radiance_scale(const vantor::BsdfDescription &bsdf, vantor::Vec3 wo, vantor::Vec3 wi);

struct Mean {
    double value = 0;
    double standard_error = 0;
};

class Sums {
  public:
    void add(double value);
    Mean mean(int count) const;

  private:
    double sum = 0;
    double squares = 0;
};

/// The fraction of light, as power, that is scattered towards wo if light comes from everywhere alike; of the green
/// channel.
Mean sampled_albedo(const vantor::BsdfDescription &bsdf, vantor::Vec3 wo, int count, bool with_specular = true);

} // namespace bsdf_cases
