// A program in which each allocation fails in turn while a picture becomes a file: the file is whole, or there is a
// reason.
#include "libvantor/images/formats.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

// How many more allocations succeed before one fails; below 0 all do.
long allocations_left = -1;

bool fails_now() { return allocations_left >= 0 && allocations_left-- == 0; }

void *short_of_memory() {
    errno = ENOMEM;
    return nullptr;
}

} // namespace

// These stand before the C library's own, and for the image libraries, too: so they have to be seen from outside.
extern "C" {
void *__libc_malloc(std::size_t size) noexcept;
void *__libc_calloc(std::size_t count, std::size_t size) noexcept;
void *__libc_realloc(void *block, std::size_t size) noexcept;

[[gnu::visibility("default")]] void *malloc(std::size_t size) noexcept {
    return fails_now() ? short_of_memory() : __libc_malloc(size);
}
[[gnu::visibility("default")]] void *calloc(std::size_t count, std::size_t size) noexcept {
    return fails_now() ? short_of_memory() : __libc_calloc(count, size);
}
[[gnu::visibility("default")]] void *realloc(void *block, std::size_t size) noexcept {
    return fails_now() ? short_of_memory() : __libc_realloc(block, size);
}
}

namespace {

using MakeFile = std::string (*)(const vantor::BytePicture &, const std::string &);

// How many of the allocations failed; below 0 if a file came out other than whole.
long failures_of(MakeFile make_file) {
    vantor::BytePicture picture{70, 50, {}};
    for (int i = 0; i < 3 * 70 * 50; ++i)
        picture.values.push_back(static_cast<std::uint8_t>(i * i % 251));
    const std::string comment(300, 'c');
    const std::string whole = make_file(picture, comment);
    for (long failures = 0;; ++failures) {
        bool is_whole = true;
        bool has_failed = false;
        allocations_left = failures;
        try {
            is_whole = make_file(picture, comment) == whole;
        } catch (const std::exception &) {
            has_failed = true;
        }
        const bool none_was_short = allocations_left >= 0;
        allocations_left = -1;
        if (!is_whole || (none_was_short && has_failed))
            return -1;
        if (none_was_short)
            return failures;
    }
}

} // namespace

int main() {
    const struct {
        const char *name;
        MakeFile make_file;
    } formats[] = {{"PNG", vantor::png_file}, {"JPEG", vantor::jpeg_file}, {"TIFF", vantor::tiff_file}};
    bool is_good = true;
    for (const auto &[name, make_file] : formats) {
        const long failures = failures_of(make_file);
        std::printf("%s: %ld allocations\n", name, failures);
        is_good = is_good && failures > 0;
    }
    return is_good ? EXIT_SUCCESS : EXIT_FAILURE;
}
