// Sky: daylight of a clear or hazy sky, and of the sun in it.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/images/raster.h"

#include <array>

namespace vantor {

/// Preetham, Shirley, Smits, "A Practical Analytic Model for Daylight", SIGGRAPH 1999. The zenith is +Y.
///
/// The model is photometric; its luminances become radiances by one rule: 10 kcd/m^2 are a radiance of 1. At noon the
/// blue sky then has about 1, and a white surface in the sun about 3.
class SkyModel {
  public:
    /// Towards the sun, of unit length and not below the horizon; turbidity 2 (very clear) to 10 (hazy).
    SkyModel(const VtVector3 &to_sun, double of_turbidity);

    /// The radiance from a unit direction that is not below the horizon; the sun itself left out.
    Color radiance(const VtVector3 &direction) const;

    /// The irradiance that the sun gives a surface that faces it.
    Color sun_irradiance() const;

  private:
    // Perez, Seals, Michalsky, "All-Weather Model for Sky Luminance Distribution", 1993: five coefficients.
    struct Perez {
        double a, b, c, d, e;
        double operator()(double cos_polar, double sun_angle) const;
    };

    VtVector3 sun;
    double turbidity;
    double sun_polar;             // radians
    std::array<Perez, 3> perez;   // of Y, x and y of CIE xyY
    std::array<double, 3> zenith; // the same; Y in kcd/m^2
};

/// The whole sphere as an environment's picture: the sky above, and below the horizon a ground that reflects the light
/// of the sky, and of the sun if that shines, equally in all directions.
Raster sky_picture(const SkyModel &model, const VtVector3 &to_sun, bool has_sun, Color ground_albedo);

/// The angular diameter of the sun, in degrees.
inline constexpr double sun_diameter = 0.53;

} // namespace vantor
