// PNG files, by libpng.
#include "libvantor/images/formats.h"

#include <array>
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <png.h>
#include <stdexcept>
#include <utility>

namespace vantor {

namespace {

struct PngWriter {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::string file;
    std::array<char, 200> message{};

    PngWriter() = default;
    ~PngWriter() { png_destroy_write_struct(&png, &info); }
    PngWriter(const PngWriter &) = delete;
    PngWriter &operator=(const PngWriter &) = delete;
};

void on_error(png_structp png, png_const_charp text) {
    auto &message = static_cast<PngWriter *>(png_get_error_ptr(png))->message;
    std::snprintf(message.data(), message.size(), "%s", text);
    png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

void on_bytes(png_structp png, png_bytep bytes, png_size_t count) {
    if (!append(static_cast<PngWriter *>(png_get_io_ptr(png))->file, bytes, count))
        png_error(png, "no memory left");
}

void on_flush(png_structp) {}

// With the alpha behind the colours of each pixel.
template <class Integer> std::vector<Integer> interleaved(const IntegerPicture<Integer> &picture) {
    std::vector<Integer> result;
    result.reserve(4 * picture.alpha.size());
    for (std::size_t i = 0; i < picture.alpha.size(); ++i) {
        for (std::size_t c = 0; c < 3; ++c)
            result.push_back(picture.values[3 * i + c]);
        result.push_back(picture.alpha[i]);
    }
    return result;
}

// The library leaves a failure by longjmp, over no object of this frame that would have to be destroyed. False then.
template <class Integer> bool encode(PngWriter &writer, const IntegerPicture<Integer> &picture,
                                     const std::vector<Integer> &pixels, png_text &text) {
    png_structp png = writer.png;
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    png_set_write_fn(png, &writer, on_bytes, on_flush);
    png_set_IHDR(png, writer.info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 8 * sizeof(Integer), picture.alpha.empty() ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_text(png, writer.info, &text, 1);
    png_write_info(png, writer.info);
    if constexpr (sizeof(Integer) > 1 && std::endian::native == std::endian::little)
        png_set_swap(png); // words
    const std::size_t row = pixels.size() / static_cast<std::size_t>(picture.height);
    for (std::size_t first = 0; first < pixels.size(); first += row)
        png_write_row(png, reinterpret_cast<png_const_bytep>(pixels.data() + first));
    png_write_end(png, writer.info);
    return true;
}

template <class Integer> std::string encoded(const IntegerPicture<Integer> &picture, const std::string &comment) {
    PngWriter writer;
    writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer, on_error, on_warning);
    writer.info = writer.png ? png_create_info_struct(writer.png) : nullptr;
    if (!writer.info)
        throw std::bad_alloc();
    std::string key = "Comment";
    std::string value = comment;
    png_text text = {};
    text.compression = PNG_TEXT_COMPRESSION_NONE;
    text.key = key.data();
    text.text = value.data();
    text.text_length = value.size();
    const std::vector<Integer> with_alpha = interleaved(picture);
    if (!encode(writer, picture, picture.alpha.empty() ? picture.values : with_alpha, text))
        throw std::runtime_error(writer.message.data());
    return std::move(writer.file);
}

} // namespace

std::string png_file(const BytePicture &picture, const std::string &comment) { return encoded(picture, comment); }
std::string png_file(const WordPicture &picture, const std::string &comment) { return encoded(picture, comment); }

} // namespace vantor
