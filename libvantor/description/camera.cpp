// Camera: where rays start.
#include "libvantor/description/camera.h"

#include "libvantor/description/object.h"

#include <numbers>
#include <span>

namespace vantor {

namespace {

VtVector3 scaled(const VtVector3 &v, double s) { return {v[0] * s, v[1] * s, v[2] * s}; }

// Where a camera stands and how it is turned, as the script says: three unit vectors, across each other.
struct View {
    VtVector3 position;
    VtVector3 ahead;
    VtVector3 aside;
    VtVector3 above;
    double target_distance; // 1 without a target

    View(const Parameters &parameters, const CallReport &report);
};

View::View(const Parameters &parameters, const CallReport &report)
    : position(parameters.vector("position")), ahead(0, 0, -1), target_distance(1) {
    if (parameters.is_given("target")) {
        const VtVector3 to_target = difference(parameters.vector("target"), position);
        const double distance = to_target.Length();
        if (distance > 0.0) {
            ahead = to_target;
            target_distance = std::max(distance, 1e-9);
        } else {
            parameters.complain("target", "is the camera's position (the camera looks along -Z)", report);
        }
    }
    ahead.Normalize();

    VtVector3 upright = parameters.vector("up");
    upright.Normalize();
    aside = cross(ahead, upright);
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
    above = cross(aside, ahead);
}

// Vectors of which only the ratio matters. A transform or a lens must not make them too long or too short for floats.
void to_common_unit(std::span<VtVector3> vectors) {
    double longest = 0;
    for (const VtVector3 &v : vectors)
        longest = std::max(longest, v.Length());
    for (VtVector3 &v : vectors)
        v = scaled(v, 1 / longest);
}

PerspectiveCamera::FovAxis fov_axis_of(std::string_view word) {
    if (word == "horizontal")
        return PerspectiveCamera::FovAxis::Horizontal;
    if (word == "smaller")
        return PerspectiveCamera::FovAxis::Smaller;
    if (word == "larger")
        return PerspectiveCamera::FovAxis::Larger;
    return PerspectiveCamera::FovAxis::Vertical;
}

std::optional<Intrinsics> intrinsics_of(const Parameters &parameters) {
    if (!parameters.is_given("focal_lengths"))
        return {};
    const VtVector3 lengths = parameters.vector("focal_lengths");
    Intrinsics result{{static_cast<float>(lengths[0]), static_cast<float>(lengths[1])}, {}};
    if (parameters.is_given("principal_point")) {
        // Scripts count from the middle of the first pixel, rays from its corner.
        const VtVector3 point = parameters.vector("principal_point");
        result.principal_point = {static_cast<float>(point[0] + 0.5), static_cast<float>(point[1] + 0.5)};
    }
    return result;
}

std::optional<Camera> make_perspective(const Parameters &parameters, const VtTransform &transform,
                                       const CallReport &report) {
    const View view(parameters, report);
    parameters.complain_without("aperture_radius", {"focus_distance"}, report);
    parameters.complain_without("focal_lengths", {"principal_point"}, report);
    parameters.complain_beside("focal_lengths", {"fov", "fov_axis"}, report);
    const double aperture = parameters.number("aperture_radius");
    const VtVector3 aperture_right = transformed_direction(scaled(view.aside, aperture), transform);
    const VtVector3 aperture_up = transformed_direction(scaled(view.above, aperture), transform);
    if (std::max(aperture_right.Length(), aperture_up.Length()) > largest_reach) {
        report.diagnostic(
            joined({"the lens reaches beyond ", text_of(largest_reach), " in the world; the camera is left out"}));
        return {};
    }

    const double focus =
        parameters.is_given("focus_distance") ? parameters.number("focus_distance") : view.target_distance;
    const std::optional<Intrinsics> intrinsics = intrinsics_of(parameters);
    const double half_side =
        intrinsics ? focus : focus * std::tan(0.5 * parameters.number("fov") * std::numbers::pi / 180.0);
    VtVector3 axes[] = {transformed_direction(scaled(view.ahead, focus), transform),
                        transformed_direction(scaled(view.aside, half_side), transform),
                        transformed_direction(scaled(view.above, half_side), transform), aperture_right, aperture_up};
    to_common_unit(axes);

    PerspectiveCamera camera{};
    camera.position = to_float(transformed_point(view.position, transform));
    camera.forward = to_float(axes[0]);
    camera.right = to_float(axes[1]);
    camera.up = to_float(axes[2]);
    camera.lens_right = to_float(axes[3]);
    camera.lens_up = to_float(axes[4]);
    camera.aperture_right = to_float(aperture_right);
    camera.aperture_up = to_float(aperture_up);
    camera.fov_axis = fov_axis_of(parameters.choice("fov_axis"));
    camera.intrinsics = intrinsics;
    camera.has_lens = aperture > 0;
    return Camera(camera);
}

std::optional<Camera> make_orthographic(const Parameters &parameters, const VtTransform &transform,
                                        const CallReport &report) {
    const View view(parameters, report);
    const double half_height = 0.5 * parameters.number("height");
    const VtVector3 right = transformed_direction(scaled(view.aside, half_height), transform);
    const VtVector3 up = transformed_direction(scaled(view.above, half_height), transform);
    if (std::max(right.Length(), up.Length()) > largest_reach) {
        report.diagnostic(
            joined({"the picture reaches beyond ", text_of(largest_reach), " in the world; the camera is left out"}));
        return {};
    }
    VtVector3 ahead = transformed_direction(view.ahead, transform);
    ahead.Normalize();
    const VtVector3 position = transformed_point(view.position, transform);
    return Camera(OrthographicCamera{to_float(position), to_float(ahead), to_float(right), to_float(up)});
}

std::optional<Camera> make_panorama(const Parameters &parameters, const VtTransform &transform,
                                    const CallReport &report) {
    const View view(parameters, report);
    VtVector3 axes[] = {transformed_direction(view.ahead, transform), transformed_direction(view.aside, transform),
                        transformed_direction(view.above, transform)};
    to_common_unit(axes);
    const VtVector3 position = transformed_point(view.position, transform);
    return Camera(PanoramaCamera{to_float(position), to_float(axes[0]), to_float(axes[1]), to_float(axes[2])});
}

constexpr CameraMaker makers[] = {
    {"orthographic", make_orthographic},
    {"panorama", make_panorama},
    {"perspective", make_perspective},
};

} // namespace

std::span<const CameraMaker> camera_makers() { return makers; }

std::optional<Camera> make_camera(const Type &type, const Parameters &parameters, const VtTransform &transform,
                                  const CallReport &report) {
    return maker_of(camera_makers(), type).make(parameters, transform, report);
}

} // namespace vantor
