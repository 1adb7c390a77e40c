// Camera: where rays start.
#include "libvantor/entities/camera.h"

#include <numbers>

namespace vantor {

namespace {

VtVector3 difference(const VtVector3 &a, const VtVector3 &b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

VtVector3 cross(const VtVector3 &a, const VtVector3 &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

VtVector3 scaled(const VtVector3 &v, double s) { return {v[0] * s, v[1] * s, v[2] * s}; }

} // namespace

Camera::Camera(const Parameters &parameters, const VtTransform &transform, const CallReport &report) {
    const VtVector3 eye = parameters.vector("position");

    VtVector3 ahead(0, 0, -1);
    if (parameters.is_given("target")) {
        const VtVector3 to_target = difference(parameters.vector("target"), eye);
        if (to_target.Length() > 0.0)
            ahead = to_target;
        else
            parameters.complain("target", "is the camera's position (the camera looks along -Z)", report);
    }
    ahead.Normalize();

    VtVector3 upright = parameters.vector("up");
    upright.Normalize();
    VtVector3 aside = cross(ahead, upright);
    // Nearer to the line of sight than this, the direction of the cross product is mostly rounding.
    if (aside.Length() < 1e-9) {
        if (parameters.is_given("up"))
            parameters.complain("up", "is along the line of sight (another direction is up)", report);
        else
            report.diagnostic("the line of sight is along the default \"up\" (0, 1, 0) (another direction is up)");
        aside = cross(ahead, std::fabs(ahead[2]) < 0.5 ? VtVector3(0, 0, 1) : VtVector3(0, 1, 0));
        if (aside.Length() < 1e-9)
            aside = {1, 0, 0};
    }
    aside.Normalize();
    const VtVector3 above = cross(aside, ahead);

    // The three may have any common length; a transform must not make it too long or too short for floats.
    const double half_height = std::tan(0.5 * parameters.number("fov") * std::numbers::pi / 180.0);
    position = to_float(transformed_point(eye, transform));
    VtVector3 axes[3] = {transformed_direction(ahead, transform),
                         transformed_direction(scaled(aside, half_height), transform),
                         transformed_direction(scaled(above, half_height), transform)};
    const double longest = std::max({axes[0].Length(), axes[1].Length(), axes[2].Length()});
    forward = to_float(scaled(axes[0], 1 / longest));
    right = to_float(scaled(axes[1], 1 / longest));
    up = to_float(scaled(axes[2], 1 / longest));
}

} // namespace vantor
