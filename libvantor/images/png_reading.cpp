// Reading PNG files, by libpng.
#include "libvantor/images/readers.h"

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <system_error>

namespace vantor {

namespace {

// A PNG file that is being read. The library reports an error by a jump to where it was called from, past which no
// object with a destructor may live: those calls have functions of their own.
class PngReader {
  public:
    explicit PngReader(const std::string &path) : file(std::fopen(path.c_str(), "rb")) {
        if (!file)
            throw std::system_error(errno, std::generic_category());
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, &PngReader::fail, &PngReader::ignore);
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~PngReader() {
        png_destroy_read_struct(&png, &info, nullptr);
        std::fclose(file);
    }
    PngReader(const PngReader &) = delete;
    PngReader &operator=(const PngReader &) = delete;

    /// From here on the picture is colours, and alpha if it has any, of 8 or 16 bits each.
    void read_header() {
        if (!info || !try_header())
            throw std::runtime_error(message);
    }
    void read_rows(png_bytepp rows) {
        if (!try_rows(rows))
            throw std::runtime_error(message);
    }
    png_uint_32 width() const { return png_get_image_width(png, info); }
    png_uint_32 height() const { return png_get_image_height(png, info); }
    bool is_deep() const { return png_get_bit_depth(png, info) == 16; }
    bool has_alpha() const { return (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0; }

  private:
    bool try_header() {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_init_io(png, file);
        png_read_info(png, info);
        png_set_expand(png);
        png_set_gray_to_rgb(png);
        png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }
    bool try_rows(png_bytepp rows) {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_read_image(png, rows);
        png_read_end(png, nullptr);
        return true;
    }
    [[noreturn]] static void fail(png_structp png, png_const_charp text) {
        auto *reader = static_cast<PngReader *>(png_get_error_ptr(png));
        std::snprintf(reader->message, sizeof reader->message, "%s", text);
        longjmp(png_jmpbuf(png), 1);
    }
    static void ignore(png_structp, png_const_charp) {}

    std::FILE *file;
    png_structp png = nullptr;
    png_infop info = nullptr;
    char message[200] = "there is not enough memory for it";
};

} // namespace

Raster read_png(const std::string &path, long file_size) {
    PngReader reader(path);
    reader.read_header();
    check_size(reader.width(), reader.height());
    const std::size_t width = reader.width();
    const std::size_t height = reader.height();
    // A pixel has at least a bit, and compression makes at most 1032 bytes of one (zlib's technical details).
    if (width * height / 8 / 1032 > static_cast<std::size_t>(file_size))
        refuse_as_too_short();

    const bool has_alpha = reader.has_alpha();
    const bool is_deep = reader.is_deep();
    const std::size_t channels = has_alpha ? 4 : 3;
    const std::size_t row_bytes = width * channels * (is_deep ? 2 : 1);
    // Not set to zero: what a file that is cut off lacks takes no memory.
    const auto bytes = std::make_unique_for_overwrite<png_byte[]>(row_bytes * height);
    std::vector<png_bytep> rows;
    rows.reserve(height);
    for (std::size_t y = 0; y < height; ++y)
        rows.push_back(bytes.get() + y * row_bytes);
    reader.read_rows(rows.data());

    const std::array<float, 256> &decoded = linear_bytes();
    Raster raster{static_cast<int>(width), static_cast<int>(height), {}, {}, true};
    raster.pixels.reserve(width * height);
    raster.alpha.reserve(has_alpha ? width * height : 0);
    for (std::size_t i = 0; i < width * height; ++i) {
        float value[4] = {0, 0, 0, 1};
        for (std::size_t c = 0; c < channels; ++c) {
            const std::size_t at = i * channels + c;
            const int deep = is_deep ? bytes[2 * at] << 8 | bytes[2 * at + 1] : 0;
            const bool is_linear = c == 3;
            if (is_deep)
                value[c] =
                    is_linear ? static_cast<float>(deep) / 65535 : linear_of_srgb(static_cast<float>(deep) / 65535);
            else
                value[c] = is_linear ? static_cast<float>(bytes[at]) / 255 : decoded[bytes[at]];
        }
        append(raster, has_alpha, {value[0], value[1], value[2]}, value[3]);
    }
    return raster;
}

} // namespace vantor
