// Reading OpenEXR files.
#include "libvantor/base/report.h"
#include "libvantor/images/exr_part.h"
#include "libvantor/images/readers.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfIntAttribute.h>
#include <ImfStdIO.h>
#include <ImfStringAttribute.h>
#include <algorithm>
#include <set>
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

// What a layer's channels are called behind its name, but for words of sums. Without a name, the file's own.
std::vector<std::string> names_in(const Imf::ChannelList &channels, std::string_view layer) {
    std::vector<std::string> names;
    for (auto channel = channels.begin(); channel != channels.end(); ++channel) {
        const std::string_view name = channel.name();
        const std::size_t point = name.rfind('.');
        const bool is_inside = point != std::string_view::npos;
        if ((layer.empty() || channel.channel().type != Imf::UINT) && (is_inside ? name.substr(0, point) : "") == layer)
            names.emplace_back(is_inside ? name.substr(point + 1) : name);
    }
    return names;
}

// The channels that make a picture: of colours (R, G, B and A, as many of them as there are), of a grey (Y), and in
// layers of a vector (X, Y and Z), or of one number by any name. None if they make no picture.
std::vector<std::string> picture_names(const std::vector<std::string> &names, bool is_layer) {
    const auto has = [&](const char *name) { return std::ranges::find(names, name) != names.end(); };
    std::vector<std::string> result;
    if (has("R") || has("G") || has("B"))
        result = {"R", "G", "B"};
    else if (is_layer && has("X") && has("Y") && has("Z"))
        result = {"X", "Y", "Z"};
    else if (is_layer && names.size() == 1)
        return names;
    else if (has("Y"))
        result = {"Y"};
    if (!result.empty() && has("A"))
        result.emplace_back("A");
    return result;
}

struct PictureChannels {
    PixelFormat format{SampleType::Half, true, false};
    std::vector<std::string> names; // in the order of a pixel

    PictureChannels(const Imf::ChannelList &channels, const std::string &layer) {
        names = picture_names(names_in(channels, layer), !layer.empty());
        if (names.empty())
            throw std::runtime_error(layer.empty()
                                         ? "the file has neither the channels R, G and B nor Y"
                                         : joined({"the file has no layer ", in_quotes(layer), " that is a picture"}));
        format.has_alpha = names.size() > 1 && names.back() == "A";
        format.is_grey = names.size() - (format.has_alpha ? 1 : 0) == 1;
        for (std::string &name : names) {
            if (!layer.empty())
                name = joined({layer, ".", name});
            if (const Imf::Channel *channel = channels.findChannel(name); channel && channel->type != Imf::HALF)
                format.type = SampleType::Float;
        }
    }
};

// Before the file is opened in earnest, which takes memory for every line.
Imf::Header header_of(const std::string &path) {
    Imf::StdIFStream stream(path.c_str());
    char magic_and_version[8];
    stream.read(magic_and_version, sizeof magic_and_version);
    int version = static_cast<unsigned char>(magic_and_version[4]);
    Imf::Header header;
    header.readFrom(stream, version);
    return header;
}

void check_exr_header(const std::string &path, const std::string &layer, long file_size) {
    const Imf::Header header = header_of(path);
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
    check_memory(display.width, display.height, PictureChannels(header.channels(), layer).format,
                 static_cast<double>(data.width) * sample_count * sizeof(float));
}

// Halves are read as the 16 bits that they are.
template <class Sample>
void read_lines(Imf::InputFile &file, const PictureChannels &channels, Raster &raster, const Interrupt &interrupt) {
    constexpr Imf::PixelType type = sizeof(Sample) == 2 ? Imf::HALF : Imf::FLOAT;
    const Window display(file.header().displayWindow());
    const Window data(file.header().dataWindow());

    // One line of the data window at a time, so that a file that is cut off takes no memory for what it lacks.
    const auto pixel_size = static_cast<long>(channels.names.size());
    std::vector<Sample> line(static_cast<std::size_t>(data.width * pixel_size));
    const Imath::Box2i one_line({file.header().dataWindow().min.x, 0}, {file.header().dataWindow().max.x, 0});
    Imf::FrameBuffer frame;
    for (std::size_t i = 0; i < channels.names.size(); ++i) {
        // Of colours that the file lacks all values are 0.
        Imf::Slice slice = Imf::Slice::Make(type, &line[i], one_line, channels.names.size() * sizeof(Sample));
        slice.yStride = 0; // every line goes to the same place
        frame.insert(channels.names[i], slice);
    }
    file.setFrameBuffer(frame);

    // What of a line is in both windows.
    const long begin = std::clamp(data.x0 - display.x0, 0L, display.width);
    const long end = std::clamp(data.x0 + data.width - display.x0, begin, display.width);
    for (long y = 0; y < display.height; ++y) {
        interrupt.check();
        Sample *const row = raster.row<Sample>(static_cast<int>(y));
        std::fill_n(row, display.width * pixel_size, Sample{0});
        const long in_data = y + display.y0 - data.y0;
        if (in_data < 0 || in_data >= data.height)
            continue;
        file.readPixels(static_cast<int>(y + display.y0));
        if (begin == end)
            continue;
        std::copy_n(line.begin() + (begin + display.x0 - data.x0) * pixel_size, (end - begin) * pixel_size,
                    row + begin * pixel_size);
    }
}

} // namespace

std::vector<std::string> exr_layer_names(const std::string &path) {
    const Imf::Header header = header_of(path);
    std::set<std::string> names;
    header.channels().layers(names);
    std::vector<std::string> result(names.begin(), names.end());
    std::erase_if(result, [&](const std::string &layer) {
        return picture_names(names_in(header.channels(), layer), true).empty();
    });
    return result;
}

Raster read_exr(const std::string &path, const std::string &layer, long file_size, const Interrupt &interrupt) {
    check_exr_header(path, layer, file_size);
    Imf::InputFile file(path.c_str(), 0);
    const PictureChannels channels(file.header().channels(), layer);
    const Window display(file.header().displayWindow());
    Raster raster(static_cast<int>(display.width), static_cast<int>(display.height), channels.format);
    if (channels.format.type == SampleType::Half)
        read_lines<std::uint16_t>(file, channels, raster, interrupt);
    else
        read_lines<float>(file, channels, raster, interrupt);
    return raster;
}

namespace {

template <class Attribute> auto attribute_of(const Imf::Header &header, const char *name) {
    const auto *found = header.findTypedAttribute<Attribute>(name);
    if (!found)
        throw std::runtime_error("it is no part of a larger picture");
    return found->value();
}

SampleRange samples_of(const Imf::Header &header) {
    const SampleRange samples{attribute_of<Imf::IntAttribute>(header, exr_part::first_sample),
                              attribute_of<Imf::IntAttribute>(header, exr_part::end_sample),
                              attribute_of<Imf::IntAttribute>(header, exr_part::samples_in_all)};
    if (!samples.is_subtree())
        throw std::runtime_error("its range of samples is none");
    return samples;
}

} // namespace

Picture read_exr_part(const std::string &path, long file_size) {
    check_exr_header(path, "", file_size);
    Imf::InputFile file(path.c_str(), 0);
    const Imf::Header &header = file.header();
    const Window display(header.displayWindow());
    const Window data(header.dataWindow());
    const std::optional<Reduction> reduction =
        reduction_named(attribute_of<Imf::StringAttribute>(header, exr_part::reduction));
    if (!reduction || data.x0 < 0 || data.y0 < 0 || display.x0 != 0 || display.y0 != 0)
        throw std::runtime_error("it is no part of a larger picture");
    for (const char *name : exr_part::channels)
        if (!header.channels().findChannel(name))
            throw std::runtime_error(joined({"it has no channel ", in_quotes(name)}));
    const PartSums part{samples_of(header), *reduction, {}};

    const auto x0 = static_cast<int>(data.x0);
    const auto y0 = static_cast<int>(data.y0);
    Picture picture(static_cast<int>(display.width), static_cast<int>(display.height),
                    {x0, y0, x0 + static_cast<int>(data.width), y0 + static_cast<int>(data.height)});
    picture.part = part;
    picture.part->pixels.resize(picture.pixels.size());
    Imf::FrameBuffer frame;
    auto *words = reinterpret_cast<char *>(picture.part->pixels.data());
    for (std::size_t i = 0; i < std::size(exr_part::channels); ++i)
        frame.insert(exr_part::channels[i],
                     Imf::Slice::Make(Imf::UINT, words + exr_part::word_size * i, header.dataWindow(),
                                      sizeof(SampleSums), sizeof(SampleSums) * static_cast<std::size_t>(data.width)));
    file.setFrameBuffer(frame);
    file.readPixels(header.dataWindow().min.y, header.dataWindow().max.y);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i)
        picture.pixels[i] = picture.part->value(i);
    return picture;
}

} // namespace vantor
