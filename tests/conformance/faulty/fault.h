// The one mistake that VANTOR_FAULT asks of the faulty libVantor, and what several mistakes need.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

/// Whether this is the mistake to make.
inline bool has(const char *fault) {
    const char *asked = std::getenv("VANTOR_FAULT");
    return asked && std::strcmp(asked, fault) == 0;
}

/// Writes a byte, where the compiler does not see that it lies outside of the object.
[[gnu::noinline]] inline void write_at(void *object, std::size_t offset) {
    static_cast<volatile char *>(object)[offset] = 0;
}

/// What is read goes here, so that it is read.
inline volatile double sink;
/// What is allocated and never freed.
inline void *volatile lost;

[[noreturn]] inline void hang() {
    for (;;)
        pause();
}
