// Patch maker: divides the surfaces of a scene into patches, and joins the corners of their cells.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/base/progress.h"
#include "libvantor/radiosity/patches.h"

namespace vantor {

/// About as many patches as the budget says, 1 or more. A step of the progress is a primitive. Throws Interrupted.
Patches divide_into_patches(std::span<const Placement> placements, std::size_t budget, const Interrupt &interrupt,
                            Progress &progress);

} // namespace vantor
