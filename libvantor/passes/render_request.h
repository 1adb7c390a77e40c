// Render request: what a script asks a render pass for, and whether it can be served.
#pragma once

#include "libvantor/base/tiles.h"
#include "libvantor/description/registry.h"

namespace vantor {

/// What a script asks a render pass for.
struct RenderRequest {
    VtLong width; ///< Of the whole picture, in pixels.
    VtLong height;
    VtLong samples; ///< For each pixel.
    double x0;      ///< The window, in fractions of the picture from its upper left corner.
    double y0;
    double x1;
    double y1;
};

/// The window in pixels; empty, and reported, if the request cannot be served.
PixelArea window_of(const RenderRequest &request, const CallReport &call);

/// Which samples the pass makes; nothing, after a diagnostic, if they cannot be a part of the larger picture.
std::optional<SampleRange> samples_of(const RenderRequest &request, const Settings &settings, const CallReport &call);

/// Checks whether the pass looks at the noise of the whole picture, to end or to place its samples; a part of a
/// picture's samples is made as it is, which is reported.
bool check_noise_settings(const Settings &settings, const SampleRange &samples, const CallReport &call);

/// Checks that the whole picture may be rendered where a window is asked for; reports if not.
bool check_whole_picture(const RenderRequest &request, const CallReport &call);

/// The imagers whose files can be written, the innermost last; each of the others is reported.
std::vector<FileImager> writable_imagers(const Registry &registry, const PixelArea &window, const CallReport &call);

/// The filter of the innermost file; another that is asked for is reported. All files of a pass are made of the same
/// samples.
Filter common_filter(const std::vector<FileImager> &imagers, const CallReport &call);

} // namespace vantor
