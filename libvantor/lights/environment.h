// Environment: light from all directions, from a picture of them.
#pragma once

#include "libvantor/images/raster.h"
#include "libvantor/lights/distribution.h"
#include "libvantor/lights/light_concept.h"

#include <memory>

namespace vantor {

/// The picture's columns are longitudes and its rows latitudes, each by equal angles; -Z is in its middle and +Y at its
/// upper edge. Between the middles of its pixels radiance is interpolated bilinearly.
///
/// Directions are sampled by the mean luminance of the interpolated picture over each pixel, times the pixel's solid
/// angle; within a pixel they are uniform over its solid angle. As the mean of a pixel includes its neighbours, no
/// light comes from a direction that is never sampled.
class Environment {
  public:
    /// The picture has at least one pixel, and its pixels are finite and not negative; radiance is the picture times
    /// the scale. The transform is that of directions, and has a determinant of 1 or -1. Throws Interrupted.
    Environment(Raster of, Color its_scale, const Affine &world_from_local, const Interrupt &interrupt);

    /// Whether no light comes from it.
    bool is_black() const { return !distribution; }

    /// Along unit directions of the world.
    Color radiance(Vec3 direction) const;

    /// Likewise, with the pdf with which sample() draws the direction; that is 0 if it is black.
    SeenLight seen(Vec3 direction) const;

    /// Not if it is black. The pdf is per solid angle.
    Vec3 sample(Point2f numbers, float &direction_pdf) const;

    /// The luminance, integrated over all directions of its own space.
    float fluence() const { return total; }

    /// Of the luminance: see InfiniteLightBounds.
    float contrast() const { return its_contrast; }

    /// The fluence with the unit vectors of the directions, in the world.
    Vec3 vector_irradiance() const { return vector; }

  private:
    // Where on the picture a direction of its own space is, in pixels.
    Point2f image_point(Vec3 local) const;

    // Per solid angle in the world, for a pdf in its own space and a direction of the world.
    float in_world(float local_pdf, Vec3 direction) const;
    float cell_pdf(int column, int row) const;
    float pixel_solid_angle(int row) const;
    Color interpolated(Point2f point) const;

    Raster picture;
    Color scale;
    Linear world_from_local;
    Linear local_from_world;
    float determinant;             // of the former, 0 or more
    std::vector<float> cos_thetas; // of the polar angle at the rows' edges, from 1 at the top to -1
    std::unique_ptr<const Distribution> distribution;
    float total = 0;
    float its_contrast = 0;
    Vec3 vector;
};

/// The light of an environment that is not black.
struct EnvironmentLight {
    static constexpr bool is_delta = false;
    static constexpr bool is_infinite = true;

    std::shared_ptr<const Environment> environment; ///< Behind a pointer, as most lights are smaller.

    InfiniteLightBounds bounds() const {
        return {environment->vector_irradiance(), environment->fluence(), environment->contrast()};
    }

    bool sample(Vec3, Point2f numbers, EmissionSample &result) const {
        result.to_light = environment->sample(numbers, result.pdf);
        result.radiance = environment->radiance(result.to_light);
        return true;
    }

    SeenLight seen(Vec3 direction) const { return environment->seen(direction); }
};

} // namespace vantor
