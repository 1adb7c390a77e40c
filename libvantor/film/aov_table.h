// AOV table: what each AOV is made of, how samples become a pixel, and how that looks in 8 bits.
#pragma once

#include "libvantor/base/aov.h"
#include "libvantor/images/display.h"
#include "libvantor/images/sample_sums.h"
#include "libvantor/world/surface.h"

#include <array>
#include <span>

namespace vantor {

/// The first surface of a path that scatters it.
struct FirstHit {
    const Hit &hit;
    const Surface &surface;
    const Placement &placement;
    Vec3 path_start;
    Vec3 camera_axis;
};

/// One AOV. Files of floats hold the values themselves; only the colour is exposed there, too.
struct AovRow {
    Aov aov;
    Color (*value)(const FirstHit &first); ///< Null where it comes from the radiance, which a path has itself.
    Reduction reduction;
    /// In a file of 8 bits, so that it can be looked at, given the picture's largest component. Null where the imager
    /// says it, by exposure and display.
    Color (*in_8_bits)(Color value, float largest);
    Display display; ///< What then makes bytes of it; unused where the imager says it.
};

/// One row for each AOV, in the order of Aov.
std::span<const AovRow, aov_count> aov_table();
inline const AovRow &row_of(Aov aov) { return aov_table()[index_of(aov)]; }

/// What a sample of a pixel sees first, for every AOV that has a value there. It hits nothing where the path leaves the
/// scene, or a medium scatters it before.
struct AovSample {
    Vec3 start{}; ///< Of the path; given, like the next.
    Vec3 axis{};  ///< Of the camera.
    bool is_hit = false;
    std::array<Color, aov_count> values{};

    void record(const Hit &hit, const Surface &surface, const Placement &placement);
};

} // namespace vantor
