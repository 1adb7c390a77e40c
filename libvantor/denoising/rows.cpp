// Rows: work on all pixels, and means around them.
#include "libvantor/denoising/rows.h"

#include "libvantor/base/threads.h"

#include <algorithm>

namespace vantor {

void for_each_row(int height, const Interrupt &interrupt, const std::function<void(int y)> &work) {
    for_each_in_parallel(static_cast<std::size_t>(height), [&](std::size_t y) {
        interrupt.check();
        work(static_cast<int>(y));
    });
}

void box_means(const std::vector<float> &values, int width, int height, int radius, const Interrupt &interrupt,
               std::vector<float> &means) {
    const auto row = [width](int y) { return static_cast<std::size_t>(y) * static_cast<std::size_t>(width); };
    for_each_row(height, interrupt, [&](int y) {
        std::vector<float> sums(static_cast<std::size_t>(width));
        const int top = std::max(0, y - radius);
        const int bottom = std::min(height - 1, y + radius);
        for (int other = top; other <= bottom; ++other)
            for (std::size_t x = 0; x < sums.size(); ++x)
                sums[x] += values[row(other) + x];
        for (int x = 0; x < width; ++x) {
            const int left = std::max(0, x - radius);
            const int right = std::min(width - 1, x + radius);
            float sum = 0;
            for (int other = left; other <= right; ++other)
                sum += sums[static_cast<std::size_t>(other)];
            means[row(y) + static_cast<std::size_t>(x)] =
                sum / static_cast<float>((bottom - top + 1) * (right - left + 1));
        }
    });
}

} // namespace vantor
