// Reading OpenEXR files.
#include "libvantor/images/readers.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfStdIO.h>
#include <algorithm>
#include <stdexcept>
#include <vector>

namespace vantor {

namespace {

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
void check_exr_header(const std::string &path, long file_size) {
    Imf::StdIFStream stream(path.c_str());
    char magic_and_version[8];
    stream.read(magic_and_version, sizeof magic_and_version);
    int version = static_cast<unsigned char>(magic_and_version[4]);
    Imf::Header header;
    header.readFrom(stream, version);
    const Window display(header.displayWindow());
    const Window data(header.dataWindow());
    // What is outside of the data window takes no bytes, and of one colour many pixels go into a byte, but a damaged
    // header should not take all the memory.
    constexpr long always_possible = 1L << 24;
    constexpr long pixels_per_byte = 4096;
    if (std::max(display.width * display.height, data.width * data.height) >
        std::max(always_possible, pixels_per_byte * file_size))
        refuse_as_too_short();

    // The library decodes a row of tiles, or as many lines as a compression takes together, at a time.
    constexpr long most_lines_together = 256;
    const long lines =
        header.hasTileDescription() ? static_cast<long>(header.tileDescription().ySize) : most_lines_together;
    double sample_count = 4; // a line of colours and alpha
    for (auto channel = header.channels().begin(); channel != header.channels().end(); ++channel)
        sample_count += static_cast<double>(std::min(lines, data.height));
    check_memory(display.width, display.height, header.channels().findChannel("A") != nullptr,
                 static_cast<double>(data.width) * sample_count * sizeof(float));
}

} // namespace

Raster read_exr(const std::string &path, long file_size, const Interrupt &interrupt) {
    check_exr_header(path, file_size);
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
        interrupt.check();
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

} // namespace vantor
