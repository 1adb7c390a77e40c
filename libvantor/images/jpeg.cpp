// JPEG files, by libjpeg.
#include "libvantor/images/formats.h"

#include <array>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <utility>

// After <cstdio>, whose types it uses without including it.
#include <jpeglib.h>

namespace vantor {

namespace {

struct JpegWriter {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    jpeg_destination_mgr destination{};
    std::jmp_buf back{};
    std::array<JOCTET, 1 << 16> buffer{};
    std::string file;
    std::array<char, JMSG_LENGTH_MAX> message{};

    JpegWriter() {
        info.client_data = this;
        info.err = jpeg_std_error(&errors);
    }
    ~JpegWriter() { jpeg_destroy_compress(&info); }
    JpegWriter(const JpegWriter &) = delete;
    JpegWriter &operator=(const JpegWriter &) = delete;
};

JpegWriter &writer_of(jpeg_common_struct *info) { return *static_cast<JpegWriter *>(info->client_data); }
JpegWriter &writer_of(jpeg_compress_struct *info) { return *static_cast<JpegWriter *>(info->client_data); }

[[noreturn]] void on_error(jpeg_common_struct *info) {
    JpegWriter &writer = writer_of(info);
    info->err->format_message(info, writer.message.data());
    std::longjmp(writer.back, 1);
}

void on_warning(jpeg_common_struct *) {}

void begin_buffer(jpeg_compress_struct *info) {
    JpegWriter &writer = writer_of(info);
    writer.destination.next_output_byte = writer.buffer.data();
    writer.destination.free_in_buffer = writer.buffer.size();
}

void take_bytes(JpegWriter &writer, std::size_t count) {
    if (append(writer.file, writer.buffer.data(), count))
        return;
    std::snprintf(writer.message.data(), writer.message.size(), "no memory left");
    std::longjmp(writer.back, 1);
}

boolean on_full_buffer(jpeg_compress_struct *info) {
    JpegWriter &writer = writer_of(info);
    take_bytes(writer, writer.buffer.size());
    begin_buffer(info);
    return TRUE;
}

void on_end(jpeg_compress_struct *info) {
    JpegWriter &writer = writer_of(info);
    take_bytes(writer, writer.buffer.size() - writer.destination.free_in_buffer);
}

// The library leaves a failure by longjmp, over no object of this frame that would have to be destroyed. False then.
bool encode(JpegWriter &writer, const BytePicture &picture, const std::string &comment) {
    if (setjmp(writer.back) != 0)
        return false;
    jpeg_compress_struct &info = writer.info;
    writer.errors.error_exit = on_error;
    writer.errors.output_message = on_warning;
    jpeg_create_compress(&info);
    writer.destination.init_destination = begin_buffer;
    writer.destination.empty_output_buffer = on_full_buffer;
    writer.destination.term_destination = on_end;
    info.dest = &writer.destination;

    info.image_width = static_cast<JDIMENSION>(picture.width);
    info.image_height = static_cast<JDIMENSION>(picture.height);
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 95, TRUE);
    for (int i = 0; i < info.num_components; ++i)
        info.comp_info[i].h_samp_factor = info.comp_info[i].v_samp_factor = 1;
    jpeg_start_compress(&info, TRUE);
    jpeg_write_marker(&info, JPEG_COM, reinterpret_cast<const JOCTET *>(comment.data()),
                      static_cast<unsigned>(comment.size()));
    const std::size_t row = 3 * static_cast<std::size_t>(picture.width);
    for (std::size_t first = 0; first < picture.values.size(); first += row) {
        // The library's rows are not constant, but it only reads them.
        JSAMPROW pixels = const_cast<JSAMPROW>(picture.values.data() + first);
        jpeg_write_scanlines(&info, &pixels, 1);
    }
    jpeg_finish_compress(&info);
    return true;
}

} // namespace

static_assert(largest_jpeg_side == JPEG_MAX_DIMENSION);

std::string jpeg_file(const BytePicture &picture, const std::string &comment) {
    const auto writer = std::make_unique<JpegWriter>(); // too large for the stack of a small thread
    if (!encode(*writer, picture, comment))
        throw std::runtime_error(writer->message.data());
    return std::move(writer->file);
}

} // namespace vantor
