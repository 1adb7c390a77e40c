// Fresnel: how much light a smooth boundary reflects.
#pragma once

#include "libvantor/base/color.h"

namespace vantor {

/// What happens to light at a smooth boundary of two media that let it through.
struct Refraction {
    float reflectance; ///< The fraction of unpolarised light that is reflected; 1 at total internal reflection.
    float cosine;      ///< Of the angle between the refracted way and the normal; 0 at total internal reflection.
};

/// The cosine, 0 to 1, is that of the angle between the arriving way and the normal; the ratio is the index of
/// refraction on the other side over that on this side. Born, Wolf, "Principles of Optics", 7th ed., 1.5.
inline Refraction refraction_of(float cosine, float ratio) {
    // Snell's law. Written so that cosines next to 0 lose no digits where the ratio is next to 1.
    const float square = ((ratio - 1) * (ratio + 1) + cosine * cosine) / (ratio * ratio);
    if (!(square > 0))
        return {1, 0};
    const float refracted = std::min(std::sqrt(square), 1.0f);
    const float perpendicular = (cosine - ratio * refracted) / (cosine + ratio * refracted);
    const float parallel = (ratio * cosine - refracted) / (ratio * cosine + refracted);
    return {0.5f * (perpendicular * perpendicular + parallel * parallel), refracted};
}

/// The reflectance at normal incidence, for either side.
inline float normal_reflectance(float ior) {
    const float root = (ior - 1) / (ior + 1);
    return root * root;
}

/// The ratio, or 1 if both are 0.
inline float ratio_or_one(float part, float whole) { return whole > 0 ? part / whole : 1; }

/// The reflectance of a metal in air for one wavelength. Its complex index of refraction is eta + i k, both 0 or more;
/// the cosine is 0 to 1. Born, Wolf, 14.2, solved for the squares.
inline float conductor_reflectance(float cosine, float eta, float k) {
    const float cosine2 = cosine * cosine;
    const float sine2 = 1 - cosine2;
    // (a + i b)^2 = (eta + i k)^2 - sine^2; `product` is a^2 + b^2.
    const float difference = eta * eta - k * k - sine2;
    const float product = std::sqrt(difference * difference + 4 * eta * eta * k * k);
    const float a = std::sqrt(std::max(0.5f * (product + difference), 0.0f));

    const float mixed = 2 * a * cosine;
    const float perpendicular = ratio_or_one(product + cosine2 - mixed, product + cosine2 + mixed);
    const float sum = cosine2 * product + sine2 * sine2;
    const float parallel = perpendicular * ratio_or_one(sum - mixed * sine2, sum + mixed * sine2);
    return std::min(0.5f * (perpendicular + parallel), 1.0f);
}
inline Color conductor_reflectance(float cosine, Color eta, Color k) {
    return {conductor_reflectance(cosine, eta.r, k.r), conductor_reflectance(cosine, eta.g, k.g),
            conductor_reflectance(cosine, eta.b, k.b)};
}

/// The weight of white in Schlick's approximation: the reflectance is (1 - weight) * normal + weight. Schlick, "An
/// Inexpensive BRDF Model for Physically-based Rendering", 1994.
inline float schlick_weight(float cosine) {
    const float rest = std::clamp(1 - cosine, 0.0f, 1.0f);
    const float square = rest * rest;
    return square * square * rest;
}

/// The same weight by Fresnel's equations, for light that meets a dielectric from outside; the ior is above 1.
inline float dielectric_weight(float cosine, float ior) {
    const float normal = normal_reflectance(ior);
    return std::max((refraction_of(cosine, ior).reflectance - normal) / (1 - normal), 0.0f);
}

/// The mean of its reflectance over the cosines, weighted by the cosine. Duntley, "The Optical Properties of Diffusing
/// Materials", Journal of the Optical Society of America, 1942.
inline float mean_dielectric_reflectance(float ior) {
    const float n2 = ior * ior;
    const float n4 = n2 * n2;
    const float below = n2 - 1;
    const float above = n2 + 1;
    return 0.5f + (ior - 1) * (3 * ior + 1) / (6 * (ior + 1) * (ior + 1)) +
           n2 * below * below / (above * above * above) * std::log((ior - 1) / (ior + 1)) -
           2 * ior * n2 * (n2 + 2 * ior - 1) / (above * (n4 - 1)) +
           8 * n4 * (n4 + 1) / (above * (n4 - 1) * (n4 - 1)) * std::log(ior);
}

/// The mean of Schlick's approximation over the cosines, weighted by the cosine; grazing light is all reflected.
/// Twice the integral of (1 - cosine)^5 cosine is 1/21.
inline float mean_schlick_reflectance(float normal) { return (20 * normal + 1) / 21; }

} // namespace vantor
