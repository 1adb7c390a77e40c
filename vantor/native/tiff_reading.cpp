// Reading TIFF files.
#include "vantor/native/tiff_reading.h"

#include "libvantor/images/readers.h"

#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <tiffio.h>

namespace {

// The first message of the library, in place of its printing.
int keep_message(TIFF *, void *to, const char *, const char *format, va_list values) {
    auto &message = *static_cast<std::string *>(to);
    char text[200];
    if (message.empty() && std::vsnprintf(text, sizeof text, format, values) > 0)
        message = text;
    return 1;
}
int drop_message(TIFF *, void *, const char *, const char *, va_list) { return 1; }

struct Close {
    void operator()(TIFF *file) const { TIFFClose(file); }
};
struct FreeOptions {
    void operator()(TIFFOpenOptions *options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

bool is_tiff(const std::string &path) {
    char start[4] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    const std::string_view signature(start, sizeof start);
    return signature == std::string_view("II*\0", 4) || signature == std::string_view("MM\0*", 4);
}

vantor::Raster read_tiff(const std::string &path) {
    std::string message;
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keep_message, &message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), drop_message, nullptr);
    const std::unique_ptr<TIFF, Close> file(TIFFOpenExt(path.c_str(), "r", options.get()));
    uint32_t width = 0;
    uint32_t height = 0;
    if (!file || !TIFFGetField(file.get(), TIFFTAG_IMAGEWIDTH, &width) ||
        !TIFFGetField(file.get(), TIFFTAG_IMAGELENGTH, &height))
        throw std::runtime_error(message.empty() ? "the file has no picture" : message);
    vantor::check_size(width, height);

    std::vector<uint32_t> pixels(std::size_t{width} * height);
    if (!TIFFReadRGBAImageOriented(file.get(), width, height, pixels.data(), ORIENTATION_TOPLEFT, 1))
        throw std::runtime_error(message.empty() ? "the file is damaged" : message);
    vantor::Raster raster(static_cast<int>(width), static_cast<int>(height), {vantor::SampleType::Byte});
    auto *sample = raster.row<std::uint8_t>(0);
    for (const uint32_t pixel : pixels)
        for (const uint32_t value : {TIFFGetR(pixel), TIFFGetG(pixel), TIFFGetB(pixel)})
            *sample++ = static_cast<std::uint8_t>(value);
    return raster;
}
