// Tiles: a picture's pixels in small squares, worked on by all cores.
#include "libvantor/base/tiles.h"

#include <algorithm>
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>

namespace vantor {

void for_each_tile(const PixelArea &area, const Interrupt &interrupt,
                   const std::function<void(const PixelArea &)> &work) {
    // Small enough to share the work evenly among many cores, large enough that handing it out costs nothing.
    constexpr int side = 16;
    const int columns = (area.width() + side - 1) / side;
    const int rows = (area.height() + side - 1) / side;

    tbb::parallel_for(
        tbb::blocked_range<int>(0, columns * rows, 1),
        [&](const tbb::blocked_range<int> &range) {
            for (int i = range.begin(); i < range.end() && !interrupt.requested(); ++i) {
                const int x = area.x0 + (i % columns) * side;
                const int y = area.y0 + (i / columns) * side;
                work({x, y, std::min(x + side, area.x1), std::min(y + side, area.y1)});
            }
        },
        tbb::simple_partitioner());
}

void for_each_stretch(std::size_t count, const Interrupt &interrupt,
                      const std::function<void(std::size_t first, std::size_t end)> &work) {
    constexpr std::size_t longest = 64;
    tbb::parallel_for(
        tbb::blocked_range<std::size_t>(0, count, longest),
        [&](const tbb::blocked_range<std::size_t> &range) {
            interrupt.check();
            work(range.begin(), range.end());
        },
        tbb::simple_partitioner());
}

} // namespace vantor
