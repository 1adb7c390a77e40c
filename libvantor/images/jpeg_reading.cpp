// Reading JPEG files, by libjpeg.
#include "libvantor/images/readers.h"

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

// After <cstdio>, whose types they use without including it.
#include <jpeglib.h>

#include <jerror.h>

namespace vantor {

namespace {

// A JPEG file that is being read. As the library leaves a failure by longjmp, its functions are called where no object
// has to be destroyed on the way.
class JpegReader {
  public:
    JpegReader(const std::string &path, const Interrupt &stop) : interrupt(stop), file(std::fopen(path.c_str(), "rb")) {
        if (!file)
            throw std::system_error(errno, std::generic_category());
        info.client_data = this;
        info.err = jpeg_std_error(&errors);
        errors.error_exit = on_error;
        errors.emit_message = on_message;
        progress.progress_monitor = on_progress;
    }
    ~JpegReader() {
        jpeg_destroy_decompress(&info);
        std::fclose(file);
    }
    JpegReader(const JpegReader &) = delete;
    JpegReader &operator=(const JpegReader &) = delete;

    void read_header() {
        if (!try_header())
            fail();
    }
    void begin() {
        if (!try_begin())
            fail();
    }
    void read_row(JSAMPROW row) {
        if (!try_row(row))
            fail();
    }
    /// What the library keeps of a file in several scans until the last of them is read.
    double decoding_bytes() {
        double bytes = 0;
        if (jpeg_has_multiple_scans(&info))
            for (int i = 0; i < info.num_components; ++i)
                bytes += static_cast<double>(info.comp_info[i].width_in_blocks) *
                         static_cast<double>(info.comp_info[i].height_in_blocks) * sizeof(JBLOCK);
        return bytes;
    }
    JDIMENSION width() const { return info.image_width; }
    JDIMENSION height() const { return info.image_height; }
    bool is_grey() const { return info.jpeg_color_space == JCS_GRAYSCALE; }

  private:
    [[noreturn]] void fail() const {
        if (is_interrupted)
            throw Interrupted();
        throw std::runtime_error(message);
    }
    bool try_header() {
        if (setjmp(back) != 0)
            return false;
        jpeg_create_decompress(&info);
        info.progress = &progress;
        jpeg_stdio_src(&info, file);
        jpeg_read_header(&info, TRUE);
        info.out_color_space = is_grey() ? JCS_GRAYSCALE : JCS_RGB;
        return true;
    }
    bool try_begin() {
        if (setjmp(back) != 0)
            return false;
        jpeg_start_decompress(&info);
        return true;
    }
    bool try_row(JSAMPROW row) {
        if (setjmp(back) != 0)
            return false;
        jpeg_read_scanlines(&info, &row, 1);
        return true;
    }
    [[noreturn]] static void on_error(jpeg_common_struct *info) {
        auto *reader = static_cast<JpegReader *>(info->client_data);
        info->err->format_message(info, reader->message);
        std::longjmp(reader->back, 1);
    }
    // What else is wrong with a file leaves a picture; the library would go on with grey where a file ends too soon.
    static void on_message(jpeg_common_struct *info, int) {
        if (info->err->msg_code == JWRN_JPEG_EOF)
            on_error(info);
    }

    // Called for every row of blocks of every scan, and for every row of pixels.
    static void on_progress(jpeg_common_struct *info) {
        auto *reader = static_cast<JpegReader *>(info->client_data);
        // Encoders make about ten. A scan may be empty, and yet all blocks are gone through for it.
        constexpr int most_scans = 1000;
        if (reader->info.input_scan_number > most_scans)
            std::snprintf(reader->message, sizeof reader->message, "the file has more than %d scans", most_scans);
        else if (reader->interrupt.requested())
            reader->is_interrupted = true;
        else
            return;
        std::longjmp(reader->back, 1);
    }

    const Interrupt &interrupt;
    std::FILE *file;
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    bool is_interrupted = false;
    std::jmp_buf back{};
    char message[JMSG_LENGTH_MAX] = {};
};

} // namespace

Raster read_jpeg(const std::string &path, long file_size, const Interrupt &interrupt) {
    const auto reader = std::make_unique<JpegReader>(path, interrupt);
    reader->read_header();
    const long width = reader->width();
    const long height = reader->height();
    check_size(width, height);
    // A bit for each block of 8 x 8 pixels is little even for arithmetic coding.
    if (width * height / 64 / 64 > file_size)
        refuse_as_too_short();
    const PixelFormat format{SampleType::Byte, reader->is_grey(), false};
    check_memory(width, height, format, reader->decoding_bytes());

    reader->begin();
    Raster raster(static_cast<int>(width), static_cast<int>(height), format);
    for (int y = 0; y < raster.height(); ++y)
        reader->read_row(raster.row<JSAMPLE>(y));
    return raster;
}

} // namespace vantor
