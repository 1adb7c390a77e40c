// Light: what shines, as the script described it.
#include "libvantor/description/light.h"

#include "libvantor/description/sky.h"
#include "libvantor/images/reading.h"
#include "libvantor/lights/cone.h"

#include <numbers>

namespace vantor {

namespace {

double radians(double degrees) { return degrees * std::numbers::pi / 180; }

Light distant_light(const VtVector3 &to_light, double diameter, Color irradiance, const VtTransform &transform) {
    // Below this, floats do not tell the disk's directions apart.
    constexpr double least_diameter = 1e-3;
    VtVector3 in_world = transformed_direction(to_light, transform);
    in_world.Normalize();
    if (diameter < least_diameter)
        return DistantLight{to_float(in_world), irradiance};
    const double height = one_minus_cos(radians(0.5 * diameter));
    return DistantDiskLight{to_float(in_world), static_cast<float>(height), irradiance};
}

// What a transform does to directions does not depend on its translation and size.
Affine of_directions(const VtTransform &transform) {
    VtTransform unmoved = transform;
    for (int c = 0; c < 3; ++c)
        unmoved[3][c] = 0;
    const double size = std::cbrt(std::fabs(to_float(unmoved).determinant));
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            unmoved[r][c] /= size;
    return to_float(unmoved);
}

// No light if it is black. Throws Interrupted.
std::vector<Light> environment_of(Raster picture, Color scale, const VtTransform &transform,
                                  const Interrupt &interrupt) {
    auto environment =
        std::make_shared<const Environment>(std::move(picture), scale, of_directions(transform), interrupt);
    if (environment->is_black())
        return {};
    return {EnvironmentLight{std::move(environment)}};
}

// Sets values that are no radiance to 0; returns how many pixels had any that are not to be expected.
long remove_unusable(Raster &picture, const Interrupt &interrupt) {
    if (picture.format().is_srgb())
        return 0; // 0 to 1
    // Far brighter than any light, and yet the sum over all pixels of a picture stays finite.
    constexpr float most = 1e18f;
    const auto for_each_pixel = [&](const auto &work) {
        for (int y = 0; y < picture.height(); ++y) {
            interrupt.check();
            for (int x = 0; x < picture.width(); ++x)
                work(picture.at(x, y));
        }
    };
    float brightest = 0;
    for_each_pixel([&](Color c) {
        for (const float value : {c.r, c.g, c.b})
            if (value > brightest && value <= most)
                brightest = value;
    });
    // Filters that sharpen, as those that scale pictures do, swing below 0 beside what is bright.
    const float expected = -0.1f * brightest;
    long count = 0;
    for_each_pixel([&](Color c) {
        const auto is_good = [&](float value) { return value >= expected && value <= most; };
        count += is_good(c.r) && is_good(c.g) && is_good(c.b) ? 0 : 1;
    });
    picture.make_usable(most, interrupt);
    return count;
}

DescribedLight make_area(const Parameters &parameters, const VtTransform &, const CallReport &) {
    return {{}, parameters.color("radiance")};
}

DescribedLight make_distant(const Parameters &parameters, const VtTransform &transform, const CallReport &) {
    const VtVector3 travels = parameters.vector("direction");
    return {{distant_light({-travels[0], -travels[1], -travels[2]}, parameters.number("angle"),
                           parameters.color("irradiance"), transform)}};
}

DescribedLight make_environment(const Parameters &parameters, const VtTransform &transform, const CallReport &report) {
    const Color radiance = parameters.color("radiance");
    if (!parameters.is_given("name"))
        return {environment_of(Raster(1, 1, {{1, 1, 1}}), radiance, transform, Interrupt())};

    const std::string path = parameters.text("name");
    ReadPicture read = read_picture(path);
    if (!read.raster) {
        parameters.complain(
            "name", joined({"is ", in_quotes(path), ", which cannot be read: ", read.why_not, " (the light is black)"}),
            report);
        return {};
    }
    const Interrupt interrupt;
    if (const long count = remove_unusable(*read.raster, interrupt); count > 0)
        parameters.complain("name",
                            joined({"has ", counted(count, "pixel"),
                                    " with values that are no radiance (0 to 1e18 are; they count as 0)"}),
                            report);
    return {environment_of(std::move(*read.raster), radiance, transform, interrupt)};
}

DescribedLight make_point(const Parameters &parameters, const VtTransform &transform, const CallReport &) {
    const VtVector3 position = transformed_point(parameters.vector("position"), transform);
    return {{PointLight{to_float(position), parameters.color("intensity")}}};
}

DescribedLight make_sky(const Parameters &parameters, const VtTransform &transform, const CallReport &report) {
    VtVector3 to_sun = parameters.vector("sun_direction");
    to_sun.Normalize();
    bool has_sun = parameters.is_on("sun");
    if (to_sun[1] < 0) {
        parameters.complain("sun_direction", "is below the horizon (the sky is that of sunset, without the sun)",
                            report);
        has_sun = false;
        to_sun[1] = 0;
        // If the sun is straight below, any point of the horizon will do.
        to_sun = to_sun.Length() > 0 ? to_sun : VtVector3(0, 0, -1);
        to_sun.Normalize();
    }
    const SkyModel model(to_sun, parameters.number("turbidity"));
    const auto scale = static_cast<float>(parameters.number("scale"));
    std::vector<Light> lights = environment_of(sky_picture(model, to_sun, has_sun, parameters.color("ground_albedo")),
                                               {scale, scale, scale}, transform, Interrupt());
    if (has_sun)
        lights.push_back(distant_light(to_sun, sun_diameter, model.sun_irradiance() * scale, transform));
    return {std::move(lights)};
}

DescribedLight make_spot(const Parameters &parameters, const VtTransform &transform, const CallReport &report) {
    const VtVector3 position = parameters.vector("position");
    VtVector3 axis = parameters.vector("direction");
    if (parameters.is_given("target")) {
        const VtVector3 target = parameters.vector("target");
        const VtVector3 to_target = difference(target, position);
        if (to_target.Length() > 0)
            axis = to_target;
        else
            parameters.complain("target", "is the light's position (\"direction\" counts)", report);
        parameters.complain_beside("target", {"direction"}, report);
    }
    axis = transformed_direction(axis, transform);
    axis.Normalize();

    const double cutoff = parameters.number("cutoff_angle");
    double beam = parameters.is_given("beam_width") ? parameters.number("beam_width") : 0.75 * cutoff;
    if (beam > cutoff) {
        parameters.complain(
            "beam_width",
            joined({"is ", text_of(beam), ", more than the cutoff_angle ", text_of(cutoff), " (which counts)"}),
            report);
        beam = cutoff;
    }
    return {{SpotLight{to_float(transformed_point(position, transform)), to_float(axis), parameters.color("intensity"),
                       static_cast<float>(one_minus_cos(radians(beam))),
                       static_cast<float>(one_minus_cos(radians(cutoff)))}}};
}

constexpr LightMaker makers[] = {
    {"area", make_area},   {"distant", make_distant}, {"environment", make_environment},
    {"point", make_point}, {"sky", make_sky},         {"spot", make_spot},
};

} // namespace

std::span<const LightMaker> light_makers() { return makers; }

bool is_placed(const Type &type) { return maker_of(light_makers(), type).make != make_area; }

DescribedLight make_light(const Type &type, const Parameters &parameters, const VtTransform &transform,
                          const CallReport &report) {
    try {
        DescribedLight light = maker_of(light_makers(), type).make(parameters, transform, report);
        light.is_visible = !parameters.knows("visible") || parameters.is_on("visible");
        return light;
    } catch (const Interrupted &) {
        report.diagnostic("interrupted; the light is black");
        return {};
    }
}

} // namespace vantor
