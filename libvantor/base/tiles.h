// Tiles: a picture's pixels in small squares, worked on by all cores.
#pragma once

#include "libvantor/base/interrupt.h"

#include <functional>

namespace vantor {

/// Pixels x0 <= x < x1, y0 <= y < y1; y goes down.
struct PixelArea {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;

    int width() const { return x1 - x0; }
    int height() const { return y1 - y0; }
    bool contains(int x, int y) const { return x >= x0 && x < x1 && y >= y0 && y < y1; }
    bool is_empty() const { return x1 <= x0 || y1 <= y0; }

    bool operator==(const PixelArea &) const = default;
};

/// Calls work for every tile of the area, on as many threads as there are; each tile once, in no particular order.
/// Once an interrupt is requested it begins no further tile and returns: what is finished can be kept.
void for_each_tile(const PixelArea &area, const Interrupt &interrupt,
                   const std::function<void(const PixelArea &)> &work);

/// Calls work for stretches of the numbers from 0 to count, on as many threads as there are. Throws Interrupted once an
/// interrupt is requested; work may throw it, too.
void for_each_stretch(std::size_t count, const Interrupt &interrupt,
                      const std::function<void(std::size_t first, std::size_t end)> &work);

} // namespace vantor
