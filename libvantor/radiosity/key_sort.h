// Sorting by keys, in a time that grows with the number of elements only.
#pragma once

#include "libvantor/base/interrupt.h"

#include <cstdint>
#include <vector>

namespace vantor {

/// The index of an element, and what it is sorted by.
struct Keyed {
    std::uint64_t key;
    std::uint32_t index;
};

/// By the lowest bits of the keys, those above being 0; the order of equal keys stays. Throws Interrupted.
void sort_by_key(std::vector<Keyed> &elements, int key_bits, const Interrupt &interrupt);

} // namespace vantor
