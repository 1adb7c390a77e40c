// Environment: light from all directions, from a picture of them.
#pragma once

#include "libvantor/base/numbers.h"
#include "libvantor/description/light.h"
#include "libvantor/lights/distribution.h"

#include <memory>

namespace vantor {

/// The picture's columns are longitudes and its rows latitudes. Between the middles of its pixels radiance is
/// interpolated bilinearly.
///
/// Directions are drawn by the mean luminance of the interpolated picture over each pixel, times the pixel's solid
/// angle; within a pixel they are uniform over its solid angle. As the mean of a pixel takes its neighbours in, light
/// comes from no direction that is never drawn.
class Environment {
  public:
    explicit Environment(const EnvironmentLight &described);

    /// Whether no light comes from it.
    bool is_black() const { return !distribution; }

    /// Along unit directions of the world.
    Color radiance(Vec3 direction) const;

    /// Likewise, with the pdf with which sample() draws the direction: per solid angle; 0 if it is black.
    struct Seen {
        Color radiance;
        float pdf;
    };
    Seen seen(Vec3 direction) const;

    /// Not if it is black.
    Vec3 sample(Point2f numbers, float &direction_pdf) const;

    /// The luminance, integrated over all directions of its own space.
    float flux() const { return total; }

  private:
    // Where on the picture a direction of its own space is, in pixels.
    Point2f image_point(Vec3 local) const;

    // Per solid angle in the world, for a pdf in its own space and a direction of the world.
    float in_world(float local_pdf, Vec3 direction) const;
    float cell_pdf(int column, int row) const;
    Color interpolated(Point2f point) const;

    std::shared_ptr<const Raster> picture;
    Color scale;
    Linear world_from_local;
    Linear local_from_world;
    float determinant;          // of the former, 0 or more
    std::vector<float> heights; // the cosine of the polar angle at the rows' edges, from 1 at the top to -1
    std::unique_ptr<const Distribution> distribution;
    float total = 0;
};

} // namespace vantor
