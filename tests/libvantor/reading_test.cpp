// Reading pictures: what good files hold, and what becomes of bad ones.
#include "libvantor/images/reading.h"

#include "libvantor/images/formats.h"
#include "tests/libvantor/interrupts.h"
#include "tests/libvantor/scripted_scene.h"

#include <ImfChannelList.h>
#include <ImfOutputFile.h>
#include <ImfTiledOutputFile.h>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <png.h>
#include <random>

// After <cstdio>, whose types it uses without including it.
#include <jpeglib.h>

namespace {

using scripted::path_of;
using vantor::Color;
using vantor::Raster;
using vantor::ReadPicture;

// Rows of bytes as they go into the file.
void write_png(const std::string &path, int width, int height, int depth, int color_type,
               const std::vector<std::vector<png_byte>> &rows, bool is_interlaced = false) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    std::FILE *file = std::fopen(path.c_str(), "wb");
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), depth, color_type,
                 is_interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const png_color palette[] = {{255, 0, 0}, {0, 128, 255}};
    const png_byte transparency[] = {255, 51};
    if (color_type == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette, 2);
        png_set_tRNS(png, info, transparency, 2, nullptr);
    }
    std::vector<png_bytep> pointers;
    for (const std::vector<png_byte> &row : rows)
        pointers.push_back(const_cast<png_bytep>(row.data()));
    png_set_rows(png, info, pointers.data());
    png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

Raster read(const std::string &path) {
    ReadPicture picture = vantor::read_picture(path);
    EXPECT_EQ(picture.why_not, "");
    EXPECT_TRUE(picture.raster.has_value());
    return picture.raster.value_or(Raster(1, 1, {{0, 0, 0}}));
}

// IEC 61966-2-1.
double decoded(double srgb) { return srgb <= 0.04045 ? srgb / 12.92 : std::pow((srgb + 0.055) / 1.055, 2.4); }

void expect_color(Color got, double r, double g, double b, double tolerance = 1e-6) {
    EXPECT_NEAR(got.r, r, tolerance);
    EXPECT_NEAR(got.g, g, tolerance);
    EXPECT_NEAR(got.b, b, tolerance);
}

TEST(Reading, PngColors) {
    const std::string path = path_of("in.png");
    for (const bool is_interlaced : {false, true}) {
        write_png(path, 2, 2, 8, PNG_COLOR_TYPE_RGB, {{0, 1, 255, 10, 11, 128}, {200, 0, 0, 0, 0, 7}}, is_interlaced);
        const Raster raster = read(path);
        ASSERT_EQ(raster.width(), 2);
        ASSERT_EQ(raster.height(), 2);
        EXPECT_FALSE(raster.format().has_alpha);
        expect_color(raster.at(0, 0), 0, decoded(1 / 255.0), 1);
        expect_color(raster.at(1, 0), decoded(10 / 255.0), decoded(11 / 255.0), decoded(128 / 255.0));
        expect_color(raster.at(0, 1), decoded(200 / 255.0), 0, 0);
        expect_color(raster.at(1, 1), 0, 0, decoded(7 / 255.0));
    }
}

TEST(Reading, PngGreyPaletteAndAlpha) {
    const std::string path = path_of("in.png");
    write_png(path, 3, 1, 8, PNG_COLOR_TYPE_GRAY, {{0, 100, 255}});
    const double grey = decoded(100 / 255.0);
    expect_color(read(path).at(1, 0), grey, grey, grey);

    write_png(path, 8, 1, 1, PNG_COLOR_TYPE_GRAY, {{0x81}});
    expect_color(read(path).at(0, 0), 1, 1, 1);
    expect_color(read(path).at(3, 0), 0, 0, 0);

    write_png(path, 2, 1, 8, PNG_COLOR_TYPE_PALETTE, {{1, 0}});
    const Raster indexed = read(path);
    expect_color(indexed.at(0, 0), 0, decoded(128 / 255.0), 1);
    expect_color(indexed.at(1, 0), 1, 0, 0);
    EXPECT_NEAR(indexed.alpha_at(0, 0), 0.2, 1e-6);
    EXPECT_EQ(indexed.alpha_at(1, 0), 1);

    // The colour of what is hardly there stays what it is.
    write_png(path, 1, 1, 8, PNG_COLOR_TYPE_RGBA, {{255, 100, 0, 51}});
    const Raster faint = read(path);
    expect_color(faint.at(0, 0), 1, grey, 0);
    EXPECT_NEAR(faint.alpha_at(0, 0), 0.2, 1e-6);
}

// All that a byte and a word may be: the same floats as the functions give.
TEST(Reading, PngValuesAreThoseOfTheCurve) {
    const std::string path = path_of("curve.png");
    std::vector<png_byte> bytes;
    for (int i = 0; i < 256; ++i)
        bytes.insert(bytes.end(), {static_cast<png_byte>(i), static_cast<png_byte>(i)});
    write_png(path, 256, 1, 8, PNG_COLOR_TYPE_GRAY_ALPHA, {bytes});
    const Raster of_bytes = read(path);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(of_bytes.at(i, 0).b, vantor::linear_of_srgb(static_cast<float>(i) / 255));
        EXPECT_EQ(of_bytes.alpha_at(i, 0), static_cast<float>(i) / 255);
    }
    std::vector<std::vector<png_byte>> rows(256);
    for (int i = 0; i < 1 << 16; ++i)
        for (int channel = 0; channel < 2; ++channel)
            rows[static_cast<std::size_t>(i / 256)].insert(
                rows[static_cast<std::size_t>(i / 256)].end(),
                {static_cast<png_byte>(i / 256), static_cast<png_byte>(i % 256)});
    write_png(path, 256, 256, 16, PNG_COLOR_TYPE_GRAY_ALPHA, rows);
    const Raster of_words = read(path);
    for (int i = 0; i < 1 << 16; ++i) {
        EXPECT_EQ(of_words.at(i % 256, i / 256).r, vantor::linear_of_srgb(static_cast<float>(i) / 65535));
        EXPECT_EQ(of_words.alpha_at(i % 256, i / 256), static_cast<float>(i) / 65535);
    }
}

TEST(Reading, PngWithSixteenBits) {
    const std::string path = path_of("in.png");
    write_png(path, 1, 1, 16, PNG_COLOR_TYPE_RGB, {{0x12, 0x34, 0xff, 0xff, 0x80, 0x00}});
    expect_color(read(path).at(0, 0), decoded(0x1234 / 65535.0), 1, decoded(0x8000 / 65535.0));
    write_png(path, 1, 1, 16, PNG_COLOR_TYPE_RGBA, {{0x80, 0, 0xff, 0xff, 0, 0, 0x80, 0}});
    const Raster half = read(path);
    expect_color(half.at(0, 0), decoded(0x8000 / 65535.0), 1, 0);
    EXPECT_NEAR(half.alpha_at(0, 0), 0x8000 / 65535.0, 1e-6);
}

void write_bytes(const std::string &path, const std::string &bytes) {
    // A new file, because some file systems wait for the disk when one is written over.
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary) << bytes;
}

// Columns get brighter from left to right, in red and green.
std::string jpeg_of_ramp() {
    vantor::BytePicture picture{64, 48, {}};
    for (int i = 0; i < 64 * 48; ++i)
        picture.values.insert(picture.values.end(),
                              {static_cast<std::uint8_t>(4 * (i % 64)), static_cast<std::uint8_t>(2 * (i % 64)), 60});
    return vantor::jpeg_file(picture, "a comment");
}

// 8 x 8 greys, 30 times the column each.
std::string grey_jpeg() {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = info.image_height = 8;
    info.input_components = 1;
    info.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    jpeg_start_compress(&info, TRUE);
    JSAMPLE row[] = {0, 30, 60, 90, 120, 150, 180, 210};
    JSAMPROW rows[] = {row};
    for (int y = 0; y < 8; ++y)
        jpeg_write_scanlines(&info, rows, 1);
    jpeg_finish_compress(&info);
    std::string file(reinterpret_cast<const char *>(bytes), size);
    jpeg_destroy_compress(&info);
    std::free(bytes);
    return file;
}

TEST(Reading, Jpeg) {
    const std::string path = path_of("in.jpg");
    const std::string file = jpeg_of_ramp();
    write_bytes(path, file);
    const Raster raster = read(path);
    ASSERT_EQ(raster.width(), 64);
    ASSERT_EQ(raster.height(), 48);
    EXPECT_FALSE(raster.format().has_alpha);
    // Compression changes bytes by a few.
    for (const int x : {5, 30, 60})
        for (const int y : {2, 40}) {
            EXPECT_NEAR(raster.at(x, y).r, decoded(4 * x / 255.0), 0.05);
            EXPECT_NEAR(raster.at(x, y).g, decoded(2 * x / 255.0), 0.03);
            EXPECT_NEAR(raster.at(x, y).b, decoded(60 / 255.0), 0.02);
        }
    // Of one channel.
    write_bytes(path, grey_jpeg());
    for (const int x : {1, 4, 6})
        expect_color(read(path).at(x, 3), decoded(30 * x / 255.0), decoded(30 * x / 255.0), decoded(30 * x / 255.0),
                     0.02);
    // The library would make the rest grey.
    write_bytes(path, file.substr(0, file.size() - 100));
    EXPECT_EQ(vantor::read_picture(path).why_not, "Premature end of JPEG file");
}

// A picture of which pixel (x, y) has the channels x, y and 0.5, and alpha 0.25; the windows are given with their last
// pixels.
void write_exr(const std::string &path, const std::vector<const char *> &names, Imath::Box2i display, Imath::Box2i data,
               Imf::Compression compression = Imf::ZIP_COMPRESSION, bool is_tiled = false,
               Imf::PixelType type = Imf::FLOAT) {
    Imf::Header header(display, data);
    header.compression() = compression;
    const int width = data.max.x - data.min.x + 1;
    const int height = data.max.y - data.min.y + 1;
    std::vector<std::vector<float>> values;
    std::vector<std::vector<Imath::half>> halves;
    Imf::FrameBuffer frame;
    for (const std::string name : names) {
        std::vector<float> &channel = values.emplace_back();
        for (int y = data.min.y; y <= data.max.y; ++y)
            for (int x = data.min.x; x <= data.max.x; ++x)
                channel.push_back(name == "R" || name == "Y" ? static_cast<float>(x)
                                  : name == "G"              ? static_cast<float>(y)
                                  : name == "B"              ? 0.5f
                                                             : 0.25f);
        halves.emplace_back(channel.begin(), channel.end());
        const bool is_half = type == Imf::HALF;
        const std::size_t size = is_half ? sizeof(Imath::half) : sizeof(float);
        void *const first = is_half ? static_cast<void *>(halves.back().data()) : channel.data();
        header.channels().insert(name, Imf::Channel(type));
        frame.insert(name, Imf::Slice::Make(type, first, data, size, size * static_cast<std::size_t>(width)));
    }
    if (is_tiled) {
        header.setTileDescription(Imf::TileDescription(8, 4));
        Imf::TiledOutputFile file(path.c_str(), header, 0);
        file.setFrameBuffer(frame);
        file.writeTiles(0, file.numXTiles() - 1, 0, file.numYTiles() - 1);
        return;
    }
    Imf::OutputFile file(path.c_str(), header, 0);
    file.setFrameBuffer(frame);
    file.writePixels(height);
}

TEST(Reading, Exr) {
    const std::string path = path_of("in.exr");
    const Imath::Box2i window({0, 0}, {19, 39});
    for (const bool is_tiled : {false, true})
        for (const Imf::Compression compression : {Imf::NO_COMPRESSION, Imf::ZIP_COMPRESSION, Imf::PIZ_COMPRESSION}) {
            write_exr(path, {"R", "G", "B", "A"}, window, window, compression, is_tiled);
            const Raster raster = read(path);
            ASSERT_EQ(raster.width(), 20);
            ASSERT_EQ(raster.height(), 40);
            ASSERT_TRUE(raster.format().has_alpha);
            EXPECT_EQ(raster.alpha_at(7, 0), 0.25f);
            for (int y = 0; y < 40; ++y)
                for (int x = 0; x < 20; ++x)
                    expect_color(raster.at(x, y), x, y, 0.5, 0);
        }
}

TEST(Reading, HalvesStayHalves) {
    const std::string path = path_of("halves.exr");
    const Imath::Box2i window({0, 0}, {19, 39});
    write_exr(path, {"R", "G", "B", "A"}, window, window, Imf::PIZ_COMPRESSION, false, Imf::HALF);
    const Raster raster = read(path);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 20; ++x) {
            expect_color(raster.at(x, y), x, y, 0.5, 0);
            EXPECT_EQ(raster.alpha_at(x, y), 0.25f);
        }
    // All that there are, with infinities and NaN: 256 of one exponent and sign lie in a row.
    Imf::Header header(256, 256);
    header.channels().insert("Y", Imf::Channel(Imf::HALF));
    std::vector<Imath::half> halves(1 << 16);
    for (std::size_t i = 0; i < halves.size(); ++i)
        halves[i].setBits(static_cast<std::uint16_t>(i));
    Imf::FrameBuffer frame;
    frame.insert("Y", Imf::Slice::Make(Imf::HALF, halves.data(), {{0, 0}, {255, 255}}, 2, 512));
    {
        Imf::OutputFile file(path.c_str(), header, 0);
        file.setFrameBuffer(frame);
        file.writePixels(256);
    }
    const Raster all = read(path);
    for (int i = 0; i < 1 << 16; ++i) {
        const float got = all.at(i % 256, i / 256).g;
        const float exact = halves[static_cast<std::size_t>(i)];
        EXPECT_TRUE(got == exact || (std::isnan(got) && std::isnan(exact))) << i;
    }
}

// What a pixel of a file takes in memory.
TEST(Reading, PixelsTakeWhatTheyTakeInTheFile) {
    const std::string path = path_of("bytes");
    const auto bytes = [&] { return read(path).format().bytes(); };
    const auto png_bytes = [&](int depth, int color_type, std::size_t row) {
        write_png(path, 2, 1, depth, color_type, {std::vector<png_byte>(row)});
        return bytes();
    };
    EXPECT_EQ(png_bytes(1, PNG_COLOR_TYPE_GRAY, 1), 1U);
    EXPECT_EQ(png_bytes(8, PNG_COLOR_TYPE_GRAY, 2), 1U);
    EXPECT_EQ(png_bytes(8, PNG_COLOR_TYPE_GRAY_ALPHA, 4), 2U);
    EXPECT_EQ(png_bytes(8, PNG_COLOR_TYPE_RGB, 6), 3U);
    EXPECT_EQ(png_bytes(8, PNG_COLOR_TYPE_RGBA, 8), 4U);
    EXPECT_EQ(png_bytes(8, PNG_COLOR_TYPE_PALETTE, 2), 4U);
    EXPECT_EQ(png_bytes(16, PNG_COLOR_TYPE_GRAY, 4), 2U);
    EXPECT_EQ(png_bytes(16, PNG_COLOR_TYPE_RGB, 12), 6U);
    EXPECT_EQ(png_bytes(16, PNG_COLOR_TYPE_RGBA, 16), 8U);
    write_bytes(path, jpeg_of_ramp());
    EXPECT_EQ(bytes(), 3U);
    write_bytes(path, grey_jpeg());
    EXPECT_EQ(bytes(), 1U);

    const auto exr_bytes = [&](const std::vector<const char *> &names, Imf::PixelType type) {
        write_exr(path, names, {{0, 0}, {1, 1}}, {{0, 0}, {1, 1}}, Imf::ZIP_COMPRESSION, false, type);
        return bytes();
    };
    EXPECT_EQ(exr_bytes({"Y"}, Imf::HALF), 2U);
    EXPECT_EQ(exr_bytes({"G"}, Imf::HALF), 6U);
    EXPECT_EQ(exr_bytes({"R", "G", "B", "A"}, Imf::HALF), 8U);
    EXPECT_EQ(exr_bytes({"Y", "A"}, Imf::FLOAT), 8U);
    EXPECT_EQ(exr_bytes({"R", "G", "B"}, Imf::FLOAT), 12U);
}

TEST(Reading, ExrWindowsAndChannels) {
    const std::string path = path_of("in.exr");
    // The data window reaches out of the display window on the left and ends before it on the right.
    write_exr(path, {"R", "G", "B", "A"}, {{-1, 5}, {6, 8}}, {{-3, 6}, {4, 7}});
    const Raster raster = read(path);
    ASSERT_EQ(raster.width(), 8);
    ASSERT_EQ(raster.height(), 4);
    expect_color(raster.at(0, 1), -1, 6, 0.5, 0);
    expect_color(raster.at(5, 2), 4, 7, 0.5, 0);
    expect_color(raster.at(6, 2), 0, 0, 0, 0);
    expect_color(raster.at(0, 0), 0, 0, 0, 0);
    EXPECT_EQ(raster.alpha_at(0, 1), 0.25f);
    EXPECT_EQ(raster.alpha_at(0, 0), 0);
    // Nothing of it is in the display window.
    write_exr(path, {"R", "G", "B"}, {{0, 0}, {3, 1}}, {{10, 0}, {12, 1}});
    expect_color(read(path).at(3, 1), 0, 0, 0, 0);

    const Imath::Box2i window({0, 0}, {3, 1});
    write_exr(path, {"Y"}, window, window);
    expect_color(read(path).at(3, 1), 3, 3, 3, 0);
    write_exr(path, {"G"}, window, window);
    expect_color(read(path).at(3, 1), 0, 1, 0, 0);
    write_exr(path, {"Z"}, window, window);
    EXPECT_EQ(vantor::read_picture(path).why_not, "the file has neither the channels R, G and B nor Y");
}

std::string bytes_of(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Reading, OtherFiles) {
    EXPECT_EQ(vantor::read_picture(path_of("missing.png")).why_not, "No such file or directory");
    EXPECT_EQ(vantor::read_picture(scripted::own_folder()).why_not, "Is a directory");
    EXPECT_EQ(vantor::read_picture("/dev/zero").why_not, "Not a regular file");
    const std::string path = path_of("other.png");
    write_bytes(path, "");
    EXPECT_EQ(vantor::read_picture(path).why_not, "it is no PNG, JPEG, OpenEXR or Radiance file");
    write_bytes(path, "a text that is no picture");
    EXPECT_EQ(vantor::read_picture(path).why_not, "it is no PNG, JPEG, OpenEXR or Radiance file");
}

// Either a picture of the size that the file has, or a reason in one line.
void expect_sane(const std::string &path) {
    const ReadPicture picture = vantor::read_picture(path);
    if (!picture.raster) {
        EXPECT_FALSE(picture.why_not.empty());
        EXPECT_EQ(picture.why_not.find('\n'), std::string::npos) << picture.why_not;
        return;
    }
    const Raster &raster = *picture.raster;
    for (int y = 0; y < raster.height(); ++y)
        for (int x = 0; x < raster.width(); ++x) {
            raster.at(x, y);
            const float alpha = raster.alpha_at(x, y);
            EXPECT_TRUE(raster.format().has_alpha || alpha == 1);
        }
}

std::vector<std::string> good_files() {
    const std::string path = path_of("good");
    std::vector<std::string> files{jpeg_of_ramp()};
    write_png(path, 2, 2, 8, PNG_COLOR_TYPE_RGB, {{0, 1, 255, 10, 11, 128}, {200, 0, 0, 0, 0, 7}});
    files.push_back(bytes_of(path));
    write_exr(path, {"R", "G", "B"}, {{0, 0}, {9, 19}}, {{0, 0}, {9, 19}});
    files.push_back(bytes_of(path));
    write_exr(path, {"R", "G", "B"}, {{0, 0}, {9, 19}}, {{0, 0}, {9, 19}}, Imf::PIZ_COMPRESSION, true);
    files.push_back(bytes_of(path));
    return files;
}

TEST(Reading, FilesThatAreCutOffHaveAReason) {
    const std::string path = path_of("cut");
    for (const std::string &file : good_files()) {
        // Every length at the start, where headers are, and some later on.
        for (std::size_t length = 0; length < file.size(); length += length < 400 ? 7 : 97) {
            write_bytes(path, file.substr(0, length));
            expect_sane(path);
        }
        write_bytes(path, file.substr(0, file.size() / 2));
        EXPECT_FALSE(vantor::read_picture(path).raster);
    }
}

TEST(Reading, DamagedFilesDoNoHarm) {
    const std::string path = path_of("damaged");
    std::mt19937 random(1);
    for (const std::string &file : good_files())
        for (int i = 0; i < 60; ++i) {
            std::string damaged = file;
            for (int k = 0; k < 3; ++k)
                damaged[random() % std::min<std::size_t>(damaged.size(), 500)] = static_cast<char>(random());
            write_bytes(path, damaged);
            expect_sane(path);
        }
}

TEST(Reading, HugePicturesAreRefused) {
    const std::string path = path_of("huge.exr");
    write_exr(path, {"Y"}, {{0, 0}, {3, 1}}, {{0, 0}, {3, 1}});
    std::string file = bytes_of(path);
    // The display window has the numbers 0, 0, 3, 1 after its name, type and size.
    const std::size_t window = file.find("displayWindow") + std::string("displayWindow.box2i.size").size();
    ASSERT_EQ(file[window + 8], 3);
    const auto with_size = [&](int right, int lower) {
        std::string changed = file;
        std::memcpy(changed.data() + window + 8, &right, 4);
        std::memcpy(changed.data() + window + 12, &lower, 4);
        write_bytes(path, changed);
        return vantor::read_picture(path).why_not;
    };
    EXPECT_EQ(with_size(1 << 20, 1 << 20), "the picture has more than 268435456 pixels");
    EXPECT_EQ(with_size(INT_MAX, INT_MAX), "the picture has more than 268435456 pixels");
    EXPECT_EQ(with_size(16383, 8191), "the file is too short for its picture");
    EXPECT_EQ(with_size(-5, 1), "the picture has no pixels");
    EXPECT_EQ(with_size(INT_MIN, INT_MIN), "the picture has no pixels");

    // A PNG file of a few bytes that claims 16384 by 16384 pixels; its checksum is made for that.
    const std::string small = path_of("small.png");
    write_png(small, 1, 1, 8, PNG_COLOR_TYPE_GRAY, {{0}});
    std::string png = bytes_of(small);
    const auto check = [&](const std::string &reason) {
        std::uint32_t remainder = ~0u;
        for (std::size_t i = 12; i < 29; ++i) { // CRC-32 of chunk type and data
            remainder ^= static_cast<unsigned char>(png[i]);
            for (int bit = 0; bit < 8; ++bit)
                remainder = remainder & 1 ? remainder >> 1 ^ 0xedb88320u : remainder >> 1;
        }
        for (std::size_t i = 0; i < 4; ++i)
            png[29 + i] = static_cast<char>(~remainder >> (24 - 8 * i));
        write_bytes(small, png);
        EXPECT_EQ(vantor::read_picture(small).why_not, reason);
    };
    png[18] = png[22] = 0x40; // big-endian sizes at 16 and 20
    png[19] = png[23] = 0;
    check("the file is too short for its picture");
    png[17] = png[21] = 1;
    check("the picture has more than 268435456 pixels");
}

// While it lives, pictures may take that much.
class PictureMemory {
  public:
    explicit PictureMemory(const char *limit) { setenv("VANTOR_PICTURE_MEMORY", limit, 1); }
    ~PictureMemory() { unsetenv("VANTOR_PICTURE_MEMORY"); }
    PictureMemory(const PictureMemory &) = delete;
    PictureMemory &operator=(const PictureMemory &) = delete;
};

TEST(Reading, PicturesThatTakeTooMuchMemoryAreRefused) {
    const std::string path = path_of("wide.png");
    const auto why_not = [&](const char *limit) {
        const PictureMemory memory(limit);
        return vantor::read_picture(path).why_not;
    };
    // A million pixels of a byte, and 16 / 3 for what is made of each.
    for (const bool is_interlaced : {false, true}) {
        write_png(path, 1024, 1024, 8, PNG_COLOR_TYPE_GRAY, {1024, std::vector<png_byte>(1024)}, is_interlaced);
        EXPECT_EQ(why_not("6"), "the picture would take 7 MiB of memory, and may 6 (VANTOR_PICTURE_MEMORY says how "
                                "many it may)");
        EXPECT_EQ(why_not("7"), "");
    }
    const auto expect_limit = [&](int needed) {
        const std::string less = std::to_string(needed - 1);
        EXPECT_EQ(why_not(less.c_str()), "the picture would take " + std::to_string(needed) +
                                             " MiB of memory, and may " + less +
                                             " (VANTOR_PICTURE_MEMORY says how many it may)");
        EXPECT_EQ(why_not(std::to_string(needed).c_str()), "");
    };
    // 4 channels of 2 bytes.
    write_png(path, 1024, 1024, 16, PNG_COLOR_TYPE_RGBA, {1024, std::vector<png_byte>(8 * 1024)});
    expect_limit(14);
    write_bytes(path, vantor::jpeg_file({1024, 1024, std::vector<std::uint8_t>(3 << 20)}, ""));
    expect_limit(9);
    // 2 channels of 4 bytes or 2, and 2.02 million bytes while it is decoded.
    const Imath::Box2i window({0, 0}, {1023, 1023});
    write_exr(path, {"Y", "A"}, window, window);
    expect_limit(16);
    write_exr(path, {"Y", "A"}, window, window, Imf::ZIP_COMPRESSION, false, Imf::HALF);
    expect_limit(12);

    for (const char *bad : {"0", "-1", "4 GiB", "1e3", "99999999999999999999"})
        EXPECT_EQ(why_not(bad),
                  "VANTOR_PICTURE_MEMORY is \"" + std::string(bad) + "\"; expected a number of MiB, 1 or more");
    EXPECT_EQ(why_not(""), "");
}

TEST(Reading, SmallFilesOfHugePicturesAreRefused) {
    const std::string path = path_of("small_of_huge.png");
    write_png(path, 16384, 16384, 1, PNG_COLOR_TYPE_GRAY, {16384, std::vector<png_byte>(2048)});
    EXPECT_LT(std::filesystem::file_size(path), 40000U);
    const PictureMemory memory("1024");
    EXPECT_EQ(vantor::read_picture(path).why_not, "the picture would take 1622 MiB of memory, and may 1024 "
                                                  "(VANTOR_PICTURE_MEMORY says how many it may)");
}

TEST(Reading, HugePicturesAreRefusedWithoutASetting) {
    const std::string path = path_of("huge_floats.exr");
    write_exr(path, {"R", "G", "B", "A"}, {{0, 0}, {16383, 16383}}, {{0, 0}, {3, 1}});
    // As long as a file of so many pixels may be; what follows the last line counts for nothing.
    write_bytes(path, bytes_of(path) + std::string(66000, '\0'));
    EXPECT_EQ(vantor::read_picture(path).why_not, "the picture would take 5462 MiB of memory, and may 4096 "
                                                  "(VANTOR_PICTURE_MEMORY says how many it may)");
}

// The picture of jpeg_of_ramp() in several scans, the last of which comes once more so often.
std::string jpeg_with_scans(int repeats) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = 64;
    info.image_height = 48;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    std::vector<JSAMPLE> row(192, 100);
    JSAMPROW start = row.data();
    while (info.next_scanline < info.image_height)
        jpeg_write_scanlines(&info, &start, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string file(reinterpret_cast<const char *>(bytes), size);
    std::free(bytes);
    const std::string scan = file.substr(file.rfind("\xff\xda"));
    const std::string scan_alone = scan.substr(0, scan.size() - 2); // without the end of the picture
    file.resize(file.size() - scan.size());
    for (int i = 0; i < repeats; ++i)
        file += scan_alone;
    return file + scan;
}

TEST(Reading, JpegWithTooManyScansIsRefused) {
    const std::string path = path_of("scans.jpg");
    write_bytes(path, jpeg_with_scans(900));
    EXPECT_EQ(vantor::read_picture(path).why_not, "");
    write_bytes(path, jpeg_with_scans(20000));
    EXPECT_EQ(vantor::read_picture(path).why_not, "the file has more than 1000 scans");
}

TEST(Reading, InterruptIsHeardBetweenRows) {
    const std::string path = path_of("interrupted");
    std::vector<std::string> files = good_files();
    files.push_back(jpeg_with_scans(100));
    write_png(path, 64, 64, 8, PNG_COLOR_TYPE_GRAY, {64, std::vector<png_byte>(64)}, true);
    files.push_back(bytes_of(path));
    const scripted::InterruptHandler handler;
    int interrupts = 0;
    for (const std::string &file : files) {
        write_bytes(path, file);
        const Raster whole = read(path);
        const long polls = scripted::polls_of([&] { read(path); });
        EXPECT_GE(polls, whole.height());
        for (const long at : {1L, polls / 2, polls}) {
            const vantor::InterruptAtPoll interrupt(at);
            const ReadPicture picture = vantor::read_picture(path);
            EXPECT_FALSE(picture.raster);
            EXPECT_EQ(picture.why_not, "interrupted");
            EXPECT_TRUE(picture.was_interrupted);
            EXPECT_EQ(interrupt.polls(), at);
            EXPECT_EQ(handler.count(), ++interrupts); // the script's own handler hears of it
        }
        EXPECT_FALSE(vantor::read_picture(path).was_interrupted);
    }
}

} // namespace
