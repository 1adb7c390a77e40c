// Camera: where rays start.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/base/warp.h"
#include "libvantor/parameters/type_maker.h"

#include <optional>
#include <variant>

namespace vantor {

/// Of a ray. In the vector's space a transform may have squeezed one axis to nothing; the direction is then any.
inline Vec3 ray_direction(Vec3 v) { return direction_of(v, {0, 0, -1}); }

/// What calibration finds out about a camera, in pixels of the whole picture.
struct Intrinsics {
    Point2f focal_lengths;
    std::optional<Point2f> principal_point; ///< From the upper left corner, y down; none is the picture's middle.
};

/// A pinhole or thin-lens camera. The picture of the point that a ray goes to is sharp: it lies on a plane across the
/// view axis, where the rays of all points of the lens meet. Potmesil, Chakravarty, "A Lens and Aperture Camera Model
/// for Synthetic Image Generation", 1981.
struct PerspectiveCamera {
    /// Which side of the picture the field of view spans.
    enum class FovAxis { Vertical, Horizontal, Smaller, Larger };

    Vec3 position;
    // From the position to the middle of the sharp plane, from there to the edge of the field of view, and the radii of
    // the lens, all as long as their ratio says: they have any common unit.
    Vec3 forward;
    Vec3 right;
    Vec3 up;
    Vec3 lens_right;
    Vec3 lens_up;
    // The same radii in world units.
    Vec3 aperture_right;
    Vec3 aperture_up;
    FovAxis fov_axis;
    std::optional<Intrinsics> intrinsics; ///< In place of a field of view, which is then 1 to all sides.
    bool has_lens;

    Vec3 ahead() const { return forward; }
    Ray ray(float x, float y, int width, int height, Point2f lens) const;

  private:
    // A point of the picture on the plane at a distance of 1: to the right and upwards.
    Point2f on_unit_plane(float x, float y, int width, int height) const {
        const Point2f middle{0.5f * static_cast<float>(width), 0.5f * static_cast<float>(height)};
        if (intrinsics) {
            const Point2f principal = intrinsics->principal_point.value_or(middle);
            return {(x - principal.u) / intrinsics->focal_lengths.u, (principal.v - y) / intrinsics->focal_lengths.v};
        }
        const float unit = 1 / half_side(width, height);
        return {(x - middle.u) * unit, (middle.v - y) * unit};
    }

    // Half the side that the field of view spans, in pixels.
    float half_side(int width, int height) const {
        switch (fov_axis) {
        case FovAxis::Horizontal:
            return 0.5f * static_cast<float>(width);
        case FovAxis::Smaller:
            return 0.5f * static_cast<float>(std::min(width, height));
        case FovAxis::Larger:
            return 0.5f * static_cast<float>(std::max(width, height));
        case FovAxis::Vertical:
            break;
        }
        return 0.5f * static_cast<float>(height);
    }
};

/// Parallel rays, from a picture-sized window that stands at the position.
struct OrthographicCamera {
    Vec3 position;
    Vec3 direction; ///< Unit length.
    Vec3 right;     ///< Half the picture's height, to the right.
    Vec3 up;        ///< Half the picture's height.

    Vec3 ahead() const { return direction; }
    Ray ray(float x, float y, int width, int height) const {
        const float half_height = 0.5f * static_cast<float>(height);
        const float across = (x - 0.5f * static_cast<float>(width)) / half_height;
        const float upwards = (half_height - y) / half_height;
        return {position + right * across + up * upwards, direction};
    }
};

/// The whole sphere of directions: longitude across, latitude upwards, both by equal angles.
struct PanoramaCamera {
    Vec3 position;
    Vec3 forward; ///< The middle of the picture. The three have any common unit.
    Vec3 right;
    Vec3 up;

    Vec3 ahead() const { return forward; }
    Ray ray(float x, float y, int width, int height) const;
};

/// What the script described, in world space.
class Camera {
  public:
    using Kind = std::variant<PerspectiveCamera, OrthographicCamera, PanoramaCamera>;

    explicit Camera(const Kind &of_kind) : kind(of_kind) {}

    /// Whether ray() reads its lens sample.
    bool has_lens() const {
        const auto *perspective = std::get_if<PerspectiveCamera>(&kind);
        return perspective && perspective->has_lens;
    }

    /// The ray through a point of a picture. The point is in pixels from the upper left corner, y down, and may lie a
    /// little outside; pixels are square, but for a panorama's.
    Ray ray(float x, float y, int width, int height, Point2f lens) const {
        if (const auto *perspective = std::get_if<PerspectiveCamera>(&kind))
            return perspective->ray(x, y, width, height, lens);
        if (const auto *panorama = std::get_if<PanoramaCamera>(&kind))
            return panorama->ray(x, y, width, height);
        return std::get<OrthographicCamera>(kind).ray(x, y, width, height);
    }

    /// Whether its rays start in many places.
    bool has_many_origins() const { return has_lens() || std::holds_alternative<OrthographicCamera>(kind); }

    /// The direction across the plane of its pictures, ahead; unit length. It is that of the view, unless a transform
    /// shears the camera.
    Vec3 axis() const {
        return std::visit(
            [](const auto &camera) {
                const Vec3 ahead = ray_direction(camera.ahead());
                const Vec3 normal = direction_of(cross(camera.right, camera.up), ahead);
                return dot(normal, ahead) < 0 ? -normal : normal;
            },
            kind);
    }

    /// Where it stands, in the world.
    Vec3 position() const {
        return std::visit([](const auto &camera) { return camera.position; }, kind);
    }

  private:
    Kind kind;
};

using CameraMaker = TypeMaker<std::optional<Camera>(const Parameters &, const VtTransform &, const CallReport &)>;

/// One for each type of camera.
std::span<const CameraMaker> camera_makers();

/// Under the transform, which is usable. Nothing, after a diagnostic, if it would reach too far.
std::optional<Camera> make_camera(const Type &type, const Parameters &parameters, const VtTransform &transform,
                                  const CallReport &report);

inline Ray PerspectiveCamera::ray(float x, float y, int width, int height, Point2f lens) const {
    const auto [across, upwards] = on_unit_plane(x, y, width, height);
    const Vec3 to_sharp_plane = forward + right * across + up * upwards;
    if (!has_lens)
        return {position, ray_direction(to_sharp_plane)};
    const Vec3 on_lens = warp::disk(lens);
    return {position + aperture_right * on_lens.x + aperture_up * on_lens.y,
            ray_direction(to_sharp_plane - lens_right * on_lens.x - lens_up * on_lens.y)};
}

inline Ray PanoramaCamera::ray(float x, float y, int width, int height) const {
    const float longitude = 2 * pi * (x / static_cast<float>(width) - 0.5f);
    const float latitude = pi * (0.5f - y / static_cast<float>(height));
    const float radius = std::cos(latitude);
    return {position, ray_direction(forward * (radius * std::cos(longitude)) + right * (radius * std::sin(longitude)) +
                                    up * std::sin(latitude))};
}

} // namespace vantor
