// Reading pictures: PNG, JPEG, OpenEXR and Radiance files, recognised by their first bytes.
#include "libvantor/images/reading.h"

#include "libvantor/base/report.h"
#include "libvantor/images/readers.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>

namespace vantor {

void check_size(long width, long height) {
    constexpr long most_pixels = 1L << 28;
    if (width < 1 || height < 1)
        throw std::runtime_error("the picture has no pixels");
    if (width > most_pixels || height > most_pixels || width * height > most_pixels)
        throw std::runtime_error(joined({"the picture has more than ", std::to_string(most_pixels), " pixels"}));
}

namespace {

// What pictures may take, in MiB.
long memory_limit() {
    constexpr long standard = 4096;
    const char *given = std::getenv("VANTOR_PICTURE_MEMORY");
    const std::string_view text = given ? given : "";
    if (text.empty())
        return standard;
    long limit = 0;
    const char *const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, limit);
    if (error != std::errc() || rest != end || limit < 1)
        throw std::runtime_error(
            joined({"VANTOR_PICTURE_MEMORY is ", in_quotes(text), "; expected a number of MiB, 1 or more"}));
    return limit;
}

} // namespace

void check_memory(long width, long height, PixelFormat format, double decoding_bytes) {
    // For each pixel: the smaller copies of colours and alpha take 4 floats / 3, the table of an environment up to 5
    // bytes.
    constexpr double made_of_it = 16.0 / 3.0;
    const double pixel_bytes = static_cast<double>(format.bytes()) + made_of_it;
    const double bytes = static_cast<double>(width) * static_cast<double>(height) * pixel_bytes + decoding_bytes;
    const long needed = static_cast<long>(std::ceil(bytes / (1 << 20)));
    const long limit = memory_limit();
    if (needed > limit)
        throw std::runtime_error(joined({"the picture would take ", std::to_string(needed), " MiB of memory, and may ",
                                         std::to_string(limit), " (VANTOR_PICTURE_MEMORY says how many it may)"}));
}

void refuse_as_too_short() { throw std::runtime_error("the file is too short for its picture"); }

namespace {

// The size of a regular file. Anything else may never come to an end.
long size_of(const std::string &path) {
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
        throw std::system_error(errno, std::generic_category());
    if (!S_ISREG(found.st_mode))
        throw std::runtime_error(S_ISDIR(found.st_mode) ? std::strerror(EISDIR) : "Not a regular file");
    return found.st_size;
}

// The first bytes of a file.
std::string start_of(const std::string &path) {
    std::string start(8, '\0');
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::system_error(errno, std::generic_category());
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    return start;
}

bool is_exr(std::string_view start) { return start.starts_with("\x76\x2f\x31\x01"); }

Raster read(const std::string &path, const std::string &layer, const Interrupt &interrupt) {
    const long file_size = size_of(path);
    const std::string signature = start_of(path);
    if (is_exr(signature))
        return read_exr(path, layer, file_size, interrupt);
    if (!layer.empty())
        throw std::runtime_error("only OpenEXR files have layers");
    if (signature == "\x89PNG\r\n\x1a\n")
        return read_png(path, file_size, interrupt);
    if (signature.starts_with("\xff\xd8\xff"))
        return read_jpeg(path, file_size, interrupt);
    if (signature.starts_with("#?"))
        return read_hdr(path, file_size, interrupt);
    throw std::runtime_error("it is no PNG, JPEG, OpenEXR or Radiance file");
}

// Why a file cannot be read, of the exception that is being handled.
std::string reason() {
    try {
        throw;
    } catch (const std::system_error &error) {
        return error.code().message();
    } catch (const std::bad_alloc &) {
        return "there is not enough memory for it";
    } catch (const std::exception &error) {
        return error.what();
    }
}

} // namespace

ReadPicture read_picture(const std::string &path, const std::string &layer) {
    const Interrupt interrupt;
    try {
        return {read(path, layer, interrupt), {}};
    } catch (const Interrupted &) {
        return {{}, "interrupted", true};
    } catch (const std::exception &) {
        return {{}, reason()};
    }
}

std::vector<std::string> layer_names(const std::string &path) {
    try {
        size_of(path);
        return is_exr(start_of(path)) ? exr_layer_names(path) : std::vector<std::string>();
    } catch (const std::exception &) {
        return {}; // read_picture() says why
    }
}

ReadPart read_part(const std::string &path) {
    try {
        return {read_exr_part(path, size_of(path)), {}};
    } catch (const std::exception &) {
        return {{}, reason()};
    }
}

} // namespace vantor
