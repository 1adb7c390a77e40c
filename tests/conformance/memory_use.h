// Whether something that is done again and again gives its memory back.
#pragma once

#include "check.h"

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <limits>

// Of the address sanitizer, whose allocator the C library knows nothing of.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

/// The bytes that are allocated at the moment.
inline std::size_t allocated_bytes() {
    if (__sanitizer_get_current_allocated_bytes)
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Fails the check if each round leaves memory behind. What is made once and kept, or grows now and then, does not
/// count: the memory in use has to grow in every batch of rounds.
template <class Round> void require_no_growth(Round round) {
    constexpr int batches = 6;
    constexpr std::size_t rounds = 10;
    constexpr std::size_t least = 8; // bytes a round; the smallest allocation takes more
    std::size_t smallest_growth = std::numeric_limits<std::size_t>::max();
    for (int batch = 0; batch < batches; ++batch) {
        const std::size_t before = allocated_bytes();
        for (std::size_t i = 0; i < rounds; ++i)
            round();
        const std::size_t after = allocated_bytes();
        smallest_growth = std::min(smallest_growth, after > before ? after - before : 0);
    }
    require(smallest_growth < least * rounds,
            "each leaves " + std::to_string(smallest_growth / rounds) + " bytes behind");
}
