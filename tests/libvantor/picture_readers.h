// Picture files read back with their formats' own libraries.
#pragma once

#include <ImfInputFile.h>
#include <ImfStandardAttributes.h>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <jpeglib.h>
#include <png.h>
#include <string>
#include <tiffio.h>
#include <vector>

namespace scripted {

/// A picture of three bytes a pixel; empty if the file cannot be read.
struct Bytes {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<unsigned char> values;
    std::string comment;

    int at(unsigned x, unsigned y, unsigned channel) const { return values[3 * (y * width + x) + channel]; }
};

inline std::string contents_of(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline Bytes read_png(const std::string &path) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return {};
    image.format = PNG_FORMAT_RGB;
    Bytes result{image.width, image.height, std::vector<unsigned char>(PNG_IMAGE_SIZE(image)), {}};
    png_image_finish_read(&image, nullptr, result.values.data(), 0, nullptr);

    // The chunk: its length in 4 bytes, "tEXt", the key, a zero, the text.
    const std::string file = contents_of(path);
    const std::size_t chunk = file.find("tEXtComment");
    if (chunk != std::string::npos) {
        std::size_t length = 0;
        for (std::size_t i = chunk - 4; i < chunk; ++i)
            length = 256 * length + static_cast<unsigned char>(file[i]);
        result.comment = file.substr(chunk + 12, length - 8);
    }
    return result;
}

inline Bytes read_jpeg(const std::string &path) {
    const std::string file = contents_of(path);
    if (file.empty())
        return {};
    jpeg_decompress_struct info = {};
    jpeg_error_mgr errors = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_save_markers(&info, JPEG_COM, 0xffff);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char *>(file.data()), file.size());
    jpeg_read_header(&info, TRUE);
    jpeg_start_decompress(&info);
    Bytes result{info.output_width, info.output_height, {}, {}};
    result.values.resize(std::size_t{3} * info.output_width * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = result.values.data() + std::size_t{3} * info.output_width * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    if (info.marker_list)
        result.comment.assign(reinterpret_cast<const char *>(info.marker_list->data), info.marker_list->data_length);
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return result;
}

inline Bytes read_tiff(const std::string &path) {
    TIFF *tiff = std::filesystem::exists(path) ? TIFFOpen(path.c_str(), "r") : nullptr;
    if (!tiff)
        return {};
    Bytes result;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &result.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &result.height);
    const char *comment = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &comment))
        result.comment = comment;
    const std::size_t row = std::size_t{3} * result.width;
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff)) == row) {
        result.values.resize(row * result.height);
        for (unsigned y = 0; y < result.height; ++y)
            TIFFReadScanline(tiff, result.values.data() + row * y, y, 0);
    }
    TIFFClose(tiff);
    return result;
}

inline Bytes read_bytes(const std::string &path) {
    const std::string ending = std::filesystem::path(path).extension().string();
    return ending == ".png" ? read_png(path) : ending.starts_with(".j") ? read_jpeg(path) : read_tiff(path);
}

inline std::string exr_comment(const std::string &path) {
    Imf::InputFile file(path.c_str(), 0);
    return Imf::hasComments(file.header()) ? Imf::comments(file.header()) : "";
}

} // namespace scripted
