// Rows: work on all pixels, and means around them.
#pragma once

#include "libvantor/base/interrupt.h"

#include <functional>
#include <vector>

namespace vantor {

/// Calls work for every row, on as many threads as there are. Throws Interrupted once an interrupt is requested.
void for_each_row(int height, const Interrupt &interrupt, const std::function<void(int y)> &work);

/// Of each value, the mean of those within the radius across and down, as far as there are any.
void box_means(const std::vector<float> &values, int width, int height, int radius, const Interrupt &interrupt,
               std::vector<float> &means);

} // namespace vantor
