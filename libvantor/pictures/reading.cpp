// Reading pictures: PNG and OpenEXR files, told apart by their first bytes.
#include "libvantor/pictures/reading.h"

#include "libvantor/base/report.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfStdIO.h>
#include <array>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>

namespace vantor {

namespace {

constexpr long most_pixels = 1L << 28;

void check_size(long width, long height) {
    if (width < 1 || height < 1)
        throw std::runtime_error("the picture has no pixels");
    if (width > most_pixels || height > most_pixels || width * height > most_pixels)
        throw std::runtime_error(joined({"the picture has more than ", std::to_string(most_pixels), " pixels"}));
}

// The size of a regular file. Anything else may never come to an end.
long size_of(const std::string &path) {
    struct stat found;
    if (stat(path.c_str(), &found) != 0)
        throw std::system_error(errno, std::generic_category());
    if (!S_ISREG(found.st_mode))
        throw std::runtime_error(S_ISDIR(found.st_mode) ? std::strerror(EISDIR) : "Not a regular file");
    return found.st_size;
}

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

// All 8-bit values, decoded.
std::array<float, 256> decoded_bytes() {
    std::array<float, 256> result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = linear_of_srgb(static_cast<float>(i) / 255);
    return result;
}

void append(Raster &raster, bool has_alpha, Color color, float alpha) {
    raster.pixels.push_back(color);
    if (has_alpha)
        raster.alpha.push_back(alpha);
}

Raster read_png(const std::string &path, long file_size) {
    PngReader reader(path);
    reader.read_header();
    check_size(reader.width(), reader.height());
    const std::size_t width = reader.width();
    const std::size_t height = reader.height();
    // A pixel has at least a bit, and compression makes at most 1032 bytes of one (zlib's technical details).
    if (width * height / 8 / 1032 > static_cast<std::size_t>(file_size))
        throw std::runtime_error("the file is too short for its picture");

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

    static const std::array<float, 256> decoded = decoded_bytes();
    Raster raster{static_cast<int>(width), static_cast<int>(height), {}, {}};
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

// An OpenEXR window, whose bounds include the last pixel.
struct Window {
    long x0;
    long y0;
    long width;
    long height;

    explicit Window(const Imath::Box2i &box)
        : x0(box.min.x), y0(box.min.y), width(box.max.x - x0 + 1), height(box.max.y - y0 + 1) {
        check_size(width, height);
    }
};

// Before the file is opened in earnest, which takes memory for every line.
void check_exr_header(const std::string &path) {
    Imf::StdIFStream stream(path.c_str());
    char magic_and_version[8];
    stream.read(magic_and_version, sizeof magic_and_version);
    int version = static_cast<unsigned char>(magic_and_version[4]);
    Imf::Header header;
    header.readFrom(stream, version);
    const Window display(header.displayWindow());
    const Window data(header.dataWindow());
}

Raster read_exr(const std::string &path) {
    check_exr_header(path);
    Imf::InputFile file(path.c_str(), 0);
    const Window display(file.header().displayWindow());
    const Window data(file.header().dataWindow());

    // One line of the data window at a time, so that a file that is cut off takes no memory for what it lacks.
    struct Pixel {
        Color color;
        float alpha = 1;
    };
    std::vector<Pixel> line(static_cast<std::size_t>(data.width));
    const Imf::ChannelList &channels = file.header().channels();
    const bool is_grey = !channels.findChannel("R") && !channels.findChannel("G") && !channels.findChannel("B");
    if (is_grey && !channels.findChannel("Y"))
        throw std::runtime_error("the file has neither the channels R, G and B nor Y");
    const bool has_alpha = channels.findChannel("A") != nullptr;
    const Imath::Box2i one_line({file.header().dataWindow().min.x, 0}, {file.header().dataWindow().max.x, 0});
    Imf::FrameBuffer frame;
    const auto insert = [&](const char *name, float &value, double missing) {
        Imf::Slice slice = Imf::Slice::Make(Imf::FLOAT, &value, one_line, sizeof(Pixel), 0, 1, 1, missing);
        slice.yStride = 0; // every line goes to the same place
        frame.insert(name, slice);
    };
    Pixel &first = line.front();
    insert(is_grey ? "Y" : "R", first.color.r, 0);
    if (!is_grey) {
        insert("G", first.color.g, 0);
        insert("B", first.color.b, 0);
    }
    if (has_alpha)
        insert("A", first.alpha, 1);
    file.setFrameBuffer(frame);

    Raster raster{static_cast<int>(display.width), static_cast<int>(display.height), {}, {}};
    const auto count = static_cast<std::size_t>(display.width) * static_cast<std::size_t>(display.height);
    raster.pixels.reserve(count);
    raster.alpha.reserve(has_alpha ? count : 0);
    for (long y = display.y0; y < display.y0 + display.height; ++y) {
        const bool has_line = y >= data.y0 && y < data.y0 + data.height;
        if (has_line)
            file.readPixels(static_cast<int>(y));
        for (long x = display.x0; x < display.x0 + display.width; ++x) {
            const bool has_pixel = has_line && x >= data.x0 && x < data.x0 + data.width;
            Pixel pixel = has_pixel ? line[static_cast<std::size_t>(x - data.x0)] : Pixel{{}, 0};
            if (is_grey)
                pixel.color = {pixel.color.r, pixel.color.r, pixel.color.r};
            append(raster, has_alpha, pixel.color, pixel.alpha);
        }
    }
    return raster;
}

Raster read(const std::string &path) {
    const long file_size = size_of(path);
    char start[8] = {};
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::system_error(errno, std::generic_category());
    file.read(start, sizeof start);
    const std::string_view signature(start, sizeof start);
    if (signature == "\x89PNG\r\n\x1a\n")
        return read_png(path, file_size);
    if (signature.starts_with("\x76\x2f\x31\x01"))
        return read_exr(path);
    throw std::runtime_error("it is neither a PNG nor an OpenEXR file");
}

// Libraries' texts may have several lines.
std::string one_line(std::string text) {
    for (char &c : text)
        if (c == '\n' || c == '\r')
            c = ' ';
    return text;
}

} // namespace

ReadPicture read_picture(const std::string &path) {
    try {
        return {read(path), {}};
    } catch (const std::system_error &error) {
        return {{}, error.code().message()};
    } catch (const std::bad_alloc &) {
        return {{}, "there is not enough memory for it"};
    } catch (const std::exception &error) {
        return {{}, one_line(error.what())};
    }
}

} // namespace vantor
