// OpenEXR files, by its library.
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

} // namespace

std::string exr_file(const Picture &picture, float scale, const std::string &comment, const Picture *alpha) {
    std::vector<Color> scaled;
    if (scale != 1) {
        scaled.reserve(picture.pixels.size());
        for (const Color c : picture.pixels)
            scaled.push_back(c * scale);
    }

    // The library wants bounds that include the last pixel.
    const PixelArea &window = picture.window;
    const Imath::Box2i display({0, 0}, {picture.full_width - 1, picture.full_height - 1});
    const Imath::Box2i data({window.x0, window.y0}, {window.x1 - 1, window.y1 - 1});
    Imf::Header header(display, data);
    header.compression() = Imf::ZIP_COMPRESSION;
    header.setTileDescription(Imf::TileDescription(64, 64, Imf::ONE_LEVEL));
    Imf::addComments(header, comment);

    const float *values = &(scale != 1 ? scaled : picture.pixels)[0].r;
    Imf::FrameBuffer frame;
    const auto add = [&](const char *name, const float *first) {
        header.channels().insert(name, Imf::Channel(Imf::FLOAT));
        frame.insert(name, Imf::Slice::Make(Imf::FLOAT, first, data, sizeof(Color),
                                            sizeof(Color) * static_cast<std::size_t>(window.width())));
    };
    add("R", values);
    add("G", values + 1);
    add("B", values + 2);
    if (alpha)
        add("A", &alpha->pixels[0].r);
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
