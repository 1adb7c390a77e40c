// Sample numbers of many samples at once.
#include "libvantor/base/random.h"

namespace vantor {

// Compiled once for each of these processors; the loader takes the best that the machine has. All is done with integers
// and exact conversions, so that all of them give the same numbers. Sanitizers do not start where the loader chooses.
#if defined(__x86_64__) && !defined(VANTOR_SANITIZED)
[[gnu::target_clones("arch=skylake-avx512", "avx2", "default")]]
#endif
void get_2d_of(std::span<const Sampler> samplers, std::uint32_t dimension, std::span<Point2f> result) {
    const Sampler *const from = samplers.data();
    Point2f *const to = result.data();
    const std::size_t count = samplers.size();
    for (std::size_t i = 0; i < count; ++i)
        to[i] = from[i].get_2d(dimension);
}

} // namespace vantor
