// Reading PNG files, by libpng.
#include "libvantor/images/readers.h"

#include <bit>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
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

    /// From here on the picture is grey or colours, and alpha if it has any, of 8 or 16 bits each.
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
    PixelFormat format() const {
        const int type = png_get_color_type(png, info);
        return {png_get_bit_depth(png, info) == 16 ? SampleType::Word : SampleType::Byte,
                (type & PNG_COLOR_MASK_COLOR) == 0, (type & PNG_COLOR_MASK_ALPHA) != 0};
    }

  private:
    bool try_header() {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_init_io(png, file);
        png_read_info(png, info);
        png_set_expand(png);
        if constexpr (std::endian::native == std::endian::little)
            png_set_swap(png); // words
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

} // namespace

Raster read_png(const std::string &path, long file_size, const Interrupt &interrupt) {
    PngReader reader(path);
    reader.read_header();
    check_size(reader.width(), reader.height());
    // A pixel has at least a bit, and compression makes at most 1032 bytes of one (zlib's technical details).
    if (std::size_t{reader.width()} * reader.height() / 8 / 1032 > static_cast<std::size_t>(file_size))
        refuse_as_too_short();
    const PixelFormat format = reader.format();
    check_memory(reader.width(), reader.height(), format, 0);

    Raster raster(static_cast<int>(reader.width()), static_cast<int>(reader.height()), format);
    for (int pass = 0; pass < reader.passes(); ++pass)
        for (int y = 0; y < raster.height(); ++y) {
            interrupt.check();
            reader.read_row(format.type == SampleType::Byte ? raster.row<png_byte>(y)
                                                            : reinterpret_cast<png_bytep>(raster.row<png_uint_16>(y)));
        }
    reader.read_end();
    return raster;
}

} // namespace vantor
