// Whether something that is done again and again gives its memory back.
#pragma once

#include "check.h"

#include <malloc.h>

#include <cstddef>

// Of the address sanitizer, whose allocator the C library knows nothing of.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

/// The bytes that are allocated at the moment.
inline std::size_t allocated_bytes() {
    if (__sanitizer_get_current_allocated_bytes)
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Fails the check if each round leaves memory behind. The first rounds do not count: what is made once and kept is
/// made in them.
template <class Round> void require_no_growth(Round round) {
    constexpr std::size_t first = 20;
    constexpr std::size_t rounds = 100;
    for (std::size_t i = 0; i < first; ++i)
        round();
    const std::size_t before = allocated_bytes();
    for (std::size_t i = 0; i < rounds; ++i)
        round();
    const std::size_t after = allocated_bytes();
    const std::size_t left = after > before ? (after - before) / rounds : 0;
    require(left < 8, "each leaves " + std::to_string(left) + " bytes behind");
}
