// OpenEXR files, by its library.
#include "libvantor/images/exr_layers.h"
#include "libvantor/images/exr_part.h"
#include "libvantor/images/formats.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIntAttribute.h>
#include <ImfStandardAttributes.h>
#include <ImfStdIO.h>
#include <ImfStringAttribute.h>
#include <ImfTiledOutputFile.h>
#include <half.h>
#include <list>

namespace vantor {

static_assert(sizeof(Color) == 3 * sizeof(float), "files are written straight from the pixels");

namespace {

// The sums of a part as channels of 32 bits, two for each double, and whatever else putting together needs.
void add_part(const PartSums &part, const Imath::Box2i &data, Imf::Header &header, Imf::FrameBuffer &frame) {
    header.insert(exr_part::first_sample, Imf::IntAttribute(part.samples.first));
    header.insert(exr_part::end_sample, Imf::IntAttribute(part.samples.end));
    header.insert(exr_part::samples_in_all, Imf::IntAttribute(part.samples.in_all));
    header.insert(exr_part::reduction,
                  Imf::StringAttribute(std::string(reduction_names[static_cast<std::size_t>(part.reduction)])));
    const int columns = data.max.x - data.min.x + 1;
    const auto width = static_cast<std::size_t>(columns);
    const auto *words = reinterpret_cast<const char *>(part.pixels.data());
    for (std::size_t i = 0; i < std::size(exr_part::channels); ++i) {
        header.channels().insert(exr_part::channels[i], Imf::Channel(Imf::UINT));
        frame.insert(exr_part::channels[i], Imf::Slice::Make(Imf::UINT, words + exr_part::word_size * i, data,
                                                             sizeof(SampleSums), sizeof(SampleSums) * width));
    }
}

// Halves in place of floats: those beyond their range become the largest.
std::vector<Imath::half> halves_of(const std::vector<Color> &pixels) {
    std::vector<Imath::half> result;
    result.reserve(3 * pixels.size());
    constexpr auto largest = static_cast<float>(HALF_MAX);
    for (const Color &pixel : pixels)
        for (const float value : {pixel.r, pixel.g, pixel.b})
            result.emplace_back(std::clamp(value, -largest, largest));
    return result;
}

// The channels of a file, written straight from pixels that have to stay as long as it.
class FileChannels {
  public:
    FileChannels(const Imath::Box2i &its_data, Imf::Header &its_header, Imf::FrameBuffer &its_frame)
        : data(its_data), header(its_header), frame(its_frame) {}

    // Of each name, a component of the pixels.
    void add(const std::string &prefix, std::initializer_list<const char *> names, const std::vector<Color> &pixels,
             bool as_halves) {
        if (as_halves) {
            halves.push_back(halves_of(pixels));
            add(prefix, names, Imf::HALF, halves.back().data());
        } else {
            add(prefix, names, Imf::FLOAT, &pixels[0].r);
        }
    }

  private:
    template <class Value> void add(const std::string &prefix, std::initializer_list<const char *> names,
                                    Imf::PixelType type, const Value *first) {
        const std::size_t size = 3 * sizeof(Value);
        for (const char *name : names) {
            const std::string channel = prefix + name;
            header.channels().insert(channel, Imf::Channel(type));
            frame.insert(channel, Imf::Slice::Make(type, first++, data, size,
                                                   size * static_cast<std::size_t>(data.max.x - data.min.x + 1)));
        }
    }

    const Imath::Box2i data;
    Imf::Header &header;
    Imf::FrameBuffer &frame;
    std::list<std::vector<Imath::half>> halves;
};

} // namespace

std::string exr_file(const Picture &picture, const FileForm &form) {
    std::vector<Color> scaled;
    if (form.scale != 1) {
        scaled.reserve(picture.pixels.size());
        for (const Color c : picture.pixels)
            scaled.push_back(c * form.scale);
    }

    // The library wants bounds that include the last pixel.
    const PixelArea &window = picture.window;
    const Imath::Box2i display({0, 0}, {picture.full_width - 1, picture.full_height - 1});
    const Imath::Box2i data({window.x0, window.y0}, {window.x1 - 1, window.y1 - 1});
    Imf::Header header(display, data);
    header.compression() = Imf::ZIP_COMPRESSION;
    header.setTileDescription(Imf::TileDescription(64, 64, Imf::ONE_LEVEL));
    Imf::addComments(header, form.comment);

    Imf::FrameBuffer frame;
    FileChannels channels(data, header, frame);
    const bool as_halves = form.bits == 16;
    channels.add("", {"R", "G", "B"}, form.scale != 1 ? scaled : picture.pixels, as_halves);
    if (form.alpha)
        channels.add("", {"A"}, form.alpha->pixels, as_halves);
    for (const FileLayer &layer : form.layers)
        channels.add(layer.name + ".", exr_layers::channels_of(layer.name), layer.picture->pixels,
                     as_halves && !exr_layers::needs_floats(layer.name));
    if (picture.part)
        add_part(*picture.part, data, header, frame);
    Imf::StdOSStream stream;
    {
        Imf::TiledOutputFile file(stream, header, 0);
        file.setFrameBuffer(frame);
        file.writeTiles(0, file.numXTiles() - 1, 0, file.numYTiles() - 1);
    }
    return stream.str();
}

} // namespace vantor
