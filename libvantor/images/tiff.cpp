// TIFF files, by libtiff.
#include "libvantor/images/formats.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <stdexcept>
#include <tiffio.h>
#include <utility>

namespace vantor {

namespace {

// A file in memory, as the library's callbacks see it.
struct TiffWriter {
    std::string file;
    std::size_t position = 0;
    std::array<char, 200> message{};
};

TiffWriter &writer_of(thandle_t handle) { return *static_cast<TiffWriter *>(handle); }

tmsize_t on_read(thandle_t handle, void *bytes, tmsize_t count) {
    TiffWriter &writer = writer_of(handle);
    const std::size_t left = writer.file.size() - std::min(writer.file.size(), writer.position);
    const std::size_t found = std::min(left, static_cast<std::size_t>(count));
    std::copy_n(writer.file.data() + writer.position, found, static_cast<char *>(bytes));
    writer.position += found;
    return static_cast<tmsize_t>(found);
}

tmsize_t on_write(thandle_t handle, void *bytes, tmsize_t count) {
    TiffWriter &writer = writer_of(handle);
    const auto wanted = static_cast<std::size_t>(count);
    try {
        if (writer.position > writer.file.size())
            writer.file.resize(writer.position);
        const std::size_t replaced = std::min(wanted, writer.file.size() - writer.position);
        writer.file.replace(writer.position, replaced, static_cast<const char *>(bytes), wanted);
    } catch (const std::exception &) {
        std::snprintf(writer.message.data(), writer.message.size(), "no memory left");
        return 0;
    }
    writer.position += wanted;
    return count;
}

toff_t on_seek(thandle_t handle, toff_t offset, int whence) {
    TiffWriter &writer = writer_of(handle);
    const std::size_t start = whence == SEEK_CUR ? writer.position : whence == SEEK_END ? writer.file.size() : 0;
    writer.position = start + offset;
    return writer.position;
}

int on_close(thandle_t) { return 0; }
toff_t size_of(thandle_t handle) { return writer_of(handle).file.size(); }
int no_map(thandle_t, void **, toff_t *) { return 0; }
void no_unmap(thandle_t, void *, toff_t) {}

// The first message stands: it says what went wrong, later ones what followed from it.
int on_error(TIFF *, void *handle, const char *, const char *format, std::va_list arguments) {
    TiffWriter &writer = writer_of(handle);
    if (writer.message[0] == '\0')
        std::vsnprintf(writer.message.data(), writer.message.size(), format, arguments);
    return 1;
}

int on_warning(TIFF *, void *, const char *, const char *, std::va_list) { return 1; }

using OwnedOptions = std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)>;

// To close a file that is open for writing is to write the rest of it, and from what a failure left half-made that
// would be a crash: encode() has written all there is to write.
struct CloseWithoutWriting {
    void operator()(TIFF *tiff) const {
        TIFFSetMode(tiff, O_RDONLY);
        TIFFClose(tiff);
    }
};
using OwnedTiff = std::unique_ptr<TIFF, CloseWithoutWriting>;

// False if there is no memory for it.
bool set_description(OwnedTiff &tiff, const std::string &comment) {
    if (!TIFFSetField(tiff.get(), TIFFTAG_IMAGEDESCRIPTION, comment.c_str())) {
        // The library has counted a value that it has no room for, and would read it when the handle is closed: that
        // little memory is lost.
        static_cast<void>(tiff.release());
        return false;
    }
    // It does not tell when it has no memory for its copy of the text, and would write it all the same.
    const char *copy = nullptr;
    return TIFFGetField(tiff.get(), TIFFTAG_IMAGEDESCRIPTION, &copy) && copy;
}

bool encode(TIFF *tiff, const BytePicture &picture) {
    bool is_good = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.width)) &&
                   TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.height)) &&
                   TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3) && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) &&
                   TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
                   TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
                   TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) &&
                   TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
                   TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) &&
                   TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    // The library takes the differences of neighbours in the row that it is given.
    const std::size_t length = 3 * static_cast<std::size_t>(picture.width);
    std::vector<std::uint8_t> row(length);
    for (int y = 0; is_good && y < picture.height; ++y) {
        std::copy_n(picture.values.data() + static_cast<std::size_t>(y) * length, length, row.data());
        is_good = TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) == 1;
    }
    return is_good && TIFFFlush(tiff) == 1;
}

} // namespace

std::string tiff_file(const BytePicture &picture, const std::string &comment) {
    TiffWriter writer;
    const OwnedOptions options(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (!options)
        throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), on_error, &writer);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), on_warning, &writer);
    OwnedTiff tiff(TIFFClientOpenExt("picture", "w", &writer, on_read, on_write, on_seek, on_close, size_of, no_map,
                                     no_unmap, options.get()));
    const bool is_good = tiff && set_description(tiff, comment) && encode(tiff.get(), picture);
    tiff.reset();
    if (!is_good || writer.message[0] != '\0')
        throw std::runtime_error(writer.message[0] != '\0' ? writer.message.data() : "the TIFF file cannot be made");
    return std::move(writer.file);
}

} // namespace vantor
