// Camera: where rays start.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/words/reader.h"

namespace vantor {

/// A pinhole camera in world space. The three axes are as long as their ratio says: the
/// picture is 2 `up` high where it is `forward` away.
class Camera {
  public:
    /// Under the transform, which is usable.
    Camera(const Parameters &parameters, const VtTransform &transform, const CallReport &report);

    /// The ray through a point of a picture. The point is in pixels from the upper left corner, y down; pixels are
    /// square.
    Ray ray(float x, float y, int width, int height) const {
        const float half_height = 0.5f * static_cast<float>(height);
        const float across = (x - 0.5f * static_cast<float>(width)) / half_height;
        const float upwards = (half_height - y) / half_height;
        return {position, normalized(forward + right * across + up * upwards)};
    }

  private:
    Vec3 position;
    Vec3 right;
    Vec3 up;
    Vec3 forward;
};

} // namespace vantor
