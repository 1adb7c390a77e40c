// Blocks: the squares of pixels whose paths are traced together.
#pragma once

#include "libvantor/base/sample_range.h"
#include "libvantor/base/tiles.h"

#include <algorithm>
#include <functional>

namespace vantor {

/// Paths are traced in waves: some samples of all pixels of a block. The blocks are those of the whole picture, and a
/// window renders every block that it touches in full. So the same paths are traced together in every window, and
/// rounding that depends on a ray's neighbours in its packet makes no difference.
inline constexpr int block_side = 4;
inline constexpr std::size_t block_pixels = std::size_t{block_side} * block_side;

/// Which samples a block's pixels get; empty ranges leave the block as it is.
using SamplesOfBlock = std::function<SampleRange(const PixelArea &block)>;

/// The window with all of each block that it touches.
inline PixelArea whole_blocks(const PixelArea &window, int width, int height) {
    const auto down = [](int x) { return x / block_side * block_side; };
    const auto up = [](int x) { return (x + block_side - 1) / block_side * block_side; };
    return {down(window.x0), down(window.y0), std::min(up(window.x1), width), std::min(up(window.y1), height)};
}

/// All blocks of a picture, row after row. Those at its edges may be smaller.
struct BlockGrid {
    int width; ///< Of the picture, in pixels.
    int height;

    int columns() const { return (width + block_side - 1) / block_side; }
    int rows() const { return (height + block_side - 1) / block_side; }
    std::size_t count() const { return static_cast<std::size_t>(columns()) * static_cast<std::size_t>(rows()); }
    std::size_t index(int column, int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns()) + static_cast<std::size_t>(column);
    }
    std::size_t index_of(const PixelArea &block) const { return index(block.x0 / block_side, block.y0 / block_side); }
    PixelArea block(int column, int row) const {
        const int x = column * block_side;
        const int y = row * block_side;
        return {x, y, std::min(x + block_side, width), std::min(y + block_side, height)};
    }

    /// Calls visit(index, block) for all of them.
    template <class Visit> void for_each(Visit visit) const {
        for (int row = 0; row < rows(); ++row)
            for (int column = 0; column < columns(); ++column)
                visit(index(column, row), block(column, row));
    }
};

} // namespace vantor
