// Environment: light from all directions, from a picture of them.
#pragma once

#include "libvantor/base/warp.h"
#include "libvantor/images/raster.h"
#include "libvantor/lights/distribution.h"
#include "libvantor/lights/light_concept.h"

#include <array>
#include <memory>

namespace vantor {

/// The picture's columns are longitudes and its rows latitudes, each by equal angles; -Z is in its middle and +Y at its
/// upper edge. Between the middles of its pixels radiance is interpolated bilinearly; around the poles, beyond the
/// middles of the first and last row, along the rows alone.
///
/// Directions are sampled by the luminance of the interpolated picture, cell by cell: a cell lies between the middles
/// of four pixels, around a pole of two. It is chosen by the mean of its corners times its solid angle. Within it the
/// pdf is bilinear over longitude and the cosine of the polar angle; where that cosine is not nearly linear, in the
/// cells next to those around a pole, the two differ by up to a factor of two. No light comes from a direction
/// that is never sampled.
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

    /// Draws a direction, and tells what is seen there; not if it is black.
    Vec3 sample(Point2f numbers, SeenLight &seen) const;

    /// The luminance, integrated over all directions of its own space.
    float fluence() const { return total; }

    /// Of the luminance: see InfiniteLightBounds.
    float contrast() const { return its_contrast; }

    /// The fluence with the unit vectors of the directions, in the world.
    Vec3 vector_irradiance() const { return vector; }

  private:
    // Between the pixel columns `column` and the next one, the first after the last; and between the pixel rows
    // `row` - 1 and `row`. The first and the last row of cells lie around the poles, and have one row of pixels twice.
    struct Cell {
        int column;
        int row;
    };
    // The colours of a cell's pixels, without the scale: above to the left and right, then below.
    using Corners = std::array<Color, 4>;
    // A point of the picture: from 0 to 1 across its cell, and down by angle; 0 down around a pole.
    struct MapPosition {
        Cell cell;
        Point2f within;
    };
    MapPosition map_position(Vec3 local) const;
    float down_by_angle(float y, int row) const;
    Corners corners_of(Cell cell) const;
    Color interpolated(const Corners &corners, Point2f within) const;
    warp::BilinearPatch luminances_of(const Corners &corners) const;

    // Rows of cells are counted from the nearer pole on, as rings; rows beyond the equator are upside down.
    struct Ring {
        bool is_lower;
        float near;   // One minus the cosine of the angle to its pole, along the edge that is nearer to that,
        float height; // and from there to the other edge.
    };
    Ring ring_of(int row) const;
    float solid_angle(int row) const; // of a cell

    // How far down its cell a direction of its own space is, by the cosine of the polar angle.
    float down_by_cosine(int row, Vec3 local) const;

    // Per solid angle in the world; `within` is down by cosine.
    float pdf(Cell cell, const Corners &corners, Point2f within, Vec3 direction) const;

    Raster picture;
    Color scale;
    Linear world_from_local;
    Linear local_from_world;
    float determinant;                       // of the former, 0 or more
    std::vector<float> one_minus_cos_thetas; // one minus the cosine of the angle to the pole, at the edges of the rings
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
        SeenLight seen;
        result.to_light = environment->sample(numbers, seen);
        result.radiance = seen.radiance;
        result.pdf = seen.pdf;
        return true;
    }

    SeenLight seen(Vec3 direction) const { return environment->seen(direction); }
};

} // namespace vantor
