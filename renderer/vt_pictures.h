// Finished pictures, for a program that wants to have their numbers instead of files. Optional: a renderer library may
// leave it out.
#pragma once

#include "algebra/vt_base.h"

extern "C" {

/// What a picture is made of that has the samples first <= i < end of each pixel, of a larger one's in_all.
struct VtSums {
    VtLong first;
    VtLong end;
    VtLong in_all;
    /// "radiance", "radiance_variance", "mean", "mean_of_hits", "direction" or "first": how a value comes of the sums.
    const char *reduction;
    /// Seven for each pixel of the window: three sums of the samples' values, three of their squares, and how many have
    /// a value. Lasts until the handler returns.
    const double *values;
};

/// A window of a picture, with three floats for each of its pixels, row after row from the top.
struct VtPicture {
    const char *path;    ///< The file that it is meant for, as the script has named it.
    const float *pixels; ///< Lasts until the handler returns.
    VtLong width;        ///< Of the whole picture, in pixels.
    VtLong height;
    VtLong x0; ///< The window: columns x0 to x1 - 1, rows y0 to y1 - 1 of the whole picture.
    VtLong y0;
    VtLong x1;
    VtLong y1;
    const VtSums *sums; ///< Of a picture that has a part of a larger one's samples; null of all others.
};

/// Called with each picture that would go into a file of floats, with the numbers that the file would have, by the
/// thread that called Render. True if the handler has taken it: the file is then not written.
typedef bool (*VtPictureHandler)(void *context, const VtPicture *picture);

/// From now on pictures are offered to the handler, with the context; null ends that. As the handlers of vt_messages.h,
/// it is one for all scenes of a process, and is set and taken away between calls.
VT_API void VtSetPictureHandler(VtPictureHandler handler, void *context);

/// Called during a pass with each part of such a picture as soon as it is finished: the window is the part, the rest is
/// as above. From any thread, and several at a time; never twice with the same pixel in one pass.
typedef void (*VtTileHandler)(void *context, const VtPicture *tile);

/// From now on the handler sees pictures grow, with the context; null ends that. Set and taken away between calls.
VT_API void VtSetTileHandler(VtTileHandler handler, void *context);
}
