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
    /// The next row, or what one pass of an interlaced picture adds to it.
    void read_row(png_bytep row) {
        if (!try_row(row))
            throw std::runtime_error(message);
    }
    void read_end() {
        if (!try_end())
            throw std::runtime_error(message);
    }
    /// How often all rows are gone through; once if the picture is not interlaced.
    int passes() const { return pass_count; }
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
        pass_count = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        return true;
    }
    bool try_row(png_bytep row) {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_read_row(png, row, nullptr);
        return true;
    }
    bool try_end() {
        if (setjmp(png_jmpbuf(png)))
            return false;
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
    int pass_count = 1;
    char message[200] = "there is not enough memory for it";
};

// From sRGB, for every value of 16 bits.
const std::vector<float> &linear_words() {
    static const std::vector<float> table = [] {
        std::vector<float> values(65536);
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = linear_of_srgb(static_cast<float>(i) / 65535);
        return values;
    }();
    return table;
}

// Adds a row of pixels of 3 or 4 channels.
void append_bytes(Raster &raster, const png_byte *row, bool has_alpha) {
    const std::array<float, 256> &decoded = linear_bytes();
    const std::size_t channels = has_alpha ? 4 : 3;
    for (int x = 0; x < raster.width; ++x, row += channels)
        append(raster, has_alpha, {decoded[row[0]], decoded[row[1]], decoded[row[2]]},
               has_alpha ? static_cast<float>(row[3]) / 255 : 1.0f);
}

// The same of 16 bits.
void append_words(Raster &raster, const png_byte *row, bool has_alpha) {
    const std::vector<float> &decoded = linear_words();
    const std::size_t channels = has_alpha ? 4 : 3;
    const auto word = [&row](std::size_t i) { return static_cast<std::size_t>(row[2 * i] << 8 | row[2 * i + 1]); };
    for (int x = 0; x < raster.width; ++x, row += 2 * channels)
        append(raster, has_alpha, {decoded[word(0)], decoded[word(1)], decoded[word(2)]},
               has_alpha ? static_cast<float>(word(3)) / 65535 : 1.0f);
}

} // namespace

Raster read_png(const std::string &path, long file_size, const Interrupt &interrupt) {
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
    const std::size_t row_bytes = width * (has_alpha ? 4 : 3) * (is_deep ? 2 : 1);
    // The passes of an interlaced picture fill its rows together.
    const std::size_t kept_rows = reader.passes() > 1 ? height : 1;
    check_memory(reader.width(), reader.height(), has_alpha, static_cast<double>(row_bytes * kept_rows));

    Raster raster{static_cast<int>(width), static_cast<int>(height), {}, {}, true};
    raster.pixels.reserve(width * height);
    raster.alpha.reserve(has_alpha ? width * height : 0);
    // Not set to zero: what a file that is cut off lacks takes no memory.
    const auto bytes = std::make_unique_for_overwrite<png_byte[]>(row_bytes * kept_rows);
    for (int pass = 1; pass <= reader.passes(); ++pass)
        for (std::size_t y = 0; y < height; ++y) {
            interrupt.check();
            png_byte *row = bytes.get() + (y % kept_rows) * row_bytes;
            reader.read_row(row);
            if (pass == reader.passes())
                (is_deep ? append_words : append_bytes)(raster, row, has_alpha);
        }
    reader.read_end();
    return raster;
}

} // namespace vantor
