// Sky: daylight of a clear or hazy sky, and of the sun in it.
#include "libvantor/description/sky.h"

#include <numbers>

namespace vantor {

namespace {

constexpr double luminance_of_one = 10; // kcd/m^2

// CIE xyY to linear Rec. 709 (IEC 61966-2-1), whose negative values, outside of its gamut, become 0.
Color rgb_of(double luminance, double x, double y) {
    const double big_x = luminance * x / y;
    const double big_z = luminance * (1 - x - y) / y;
    const auto channel = [](double value) { return static_cast<float>(std::max(value, 0.0)); };
    return {channel(3.2406 * big_x - 1.5372 * luminance - 0.4986 * big_z),
            channel(-0.9689 * big_x + 1.8758 * luminance + 0.0415 * big_z),
            channel(0.0557 * big_x - 0.2040 * luminance + 1.0570 * big_z)};
}

// The matrices of the paper's appendix A.2: [T^2 T 1] M [s^3 s^2 s 1].
double chromaticity(const double (&m)[3][4], double turbidity, double s) {
    const double rows[3] = {turbidity * turbidity, turbidity, 1};
    double sum = 0;
    for (int i = 0; i < 3; ++i)
        sum += rows[i] * (((m[i][0] * s + m[i][1]) * s + m[i][2]) * s + m[i][3]);
    return sum;
}

} // namespace

double SkyModel::Perez::operator()(double cos_polar, double sun_angle) const {
    const double cosine = std::cos(sun_angle);
    // At the horizon the first exponential is 0, as b is negative.
    return (1 + a * std::exp(b / std::max(cos_polar, 1e-6))) * (1 + c * std::exp(d * sun_angle) + e * cosine * cosine);
}

SkyModel::SkyModel(const VtVector3 &to_sun, double of_turbidity)
    : sun(to_sun), turbidity(of_turbidity), sun_polar(std::acos(std::clamp(to_sun[1], 0.0, 1.0))) {
    // Appendix A.2 of the paper.
    const double t = turbidity;
    const double s = sun_polar;
    perez = {
        {{0.1787 * t - 1.4630, -0.3554 * t + 0.4275, -0.0227 * t + 5.3251, 0.1206 * t - 2.5771, -0.0670 * t + 0.3703},
         {-0.0193 * t - 0.2592, -0.0665 * t + 0.0008, -0.0004 * t + 0.2125, -0.0641 * t - 0.8989, -0.0033 * t + 0.0452},
         {-0.0167 * t - 0.2608, -0.0950 * t + 0.0092, -0.0079 * t + 0.2102, -0.0441 * t - 1.6537,
          -0.0109 * t + 0.0529}}};
    constexpr double zenith_x[3][4] = {
        {0.00166, -0.00375, 0.00209, 0}, {-0.02903, 0.06377, -0.03202, 0.00394}, {0.11693, -0.21196, 0.06052, 0.25886}};
    constexpr double zenith_y[3][4] = {
        {0.00275, -0.00610, 0.00317, 0}, {-0.04214, 0.08970, -0.04153, 0.00516}, {0.15346, -0.26756, 0.06670, 0.26688}};
    const double chi = (4 / 9.0 - t / 120) * (std::numbers::pi - 2 * s);
    zenith = {(4.0453 * t - 4.9710) * std::tan(chi) - 0.2155 * t + 2.4192, chromaticity(zenith_x, t, s),
              chromaticity(zenith_y, t, s)};
}

Color SkyModel::radiance(const VtVector3 &direction) const {
    const double sun_angle = std::acos(std::clamp(dot(direction, sun), -1.0, 1.0));
    double value[3];
    for (std::size_t i = 0; i < 3; ++i)
        value[i] = zenith[i] * perez[i](direction[1], sun_angle) / perez[i](1, sun_polar);
    return rgb_of(value[0] / luminance_of_one, value[1], value[2]);
}

// Appendix A.1 of the paper: what molecules (Rayleigh) and particles (Angstrom) leave of the light on its way, at one
// wavelength for each channel, near the dominant ones of the Rec. 709 primaries. Above the air the sun counts as white.
Color SkyModel::sun_irradiance() const {
    constexpr double above_air = 127.5; // klx, the solar illuminance constant (Lighting Handbook of the IESNA)
    const double degrees = sun_polar * 180 / std::numbers::pi;
    const double air_mass = 1 / (std::cos(sun_polar) + 0.15 * std::pow(93.885 - degrees, -1.253));
    const double beta = 0.04608 * turbidity - 0.04586;
    const auto channel = [&](double micrometres) {
        const double molecules = std::exp(-0.008735 * air_mass * std::pow(micrometres, -4.08));
        const double particles = std::exp(-beta * air_mass * std::pow(micrometres, -1.3));
        return static_cast<float>(above_air / luminance_of_one * molecules * particles);
    };
    return {channel(0.610), channel(0.550), channel(0.465)};
}

Raster sky_picture(const SkyModel &model, const VtVector3 &to_sun, bool has_sun, Color ground_albedo) {
    // A pixel of 0.7 degrees is finer than anything in the model; the sun is a light of its own.
    constexpr int width = 512;
    constexpr int height = 256;
    std::vector<Color> picture;
    picture.reserve(std::size_t{width} * height);
    Color ground_irradiance;
    for (int row = 0; row < height / 2; ++row) {
        const double polar = std::numbers::pi * (row + 0.5) / height;
        const double solid_angle = 2 * std::numbers::pi / width * std::sin(polar) * std::numbers::pi / height;
        for (int column = 0; column < width; ++column) {
            const double turn = 2 * std::numbers::pi * ((column + 0.5) / width - 0.5);
            const VtVector3 direction(std::sin(polar) * std::sin(turn), std::cos(polar),
                                      -std::sin(polar) * std::cos(turn));
            const Color radiance = model.radiance(direction);
            picture.push_back(radiance);
            ground_irradiance += radiance * static_cast<float>(std::cos(polar) * solid_angle);
        }
    }
    if (has_sun)
        ground_irradiance += model.sun_irradiance() * static_cast<float>(std::max(to_sun[1], 0.0));
    picture.resize(std::size_t{width} * height, ground_albedo * ground_irradiance * inverse_pi);
    return {width, height, picture};
}

} // namespace vantor
