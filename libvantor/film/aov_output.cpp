// AOV output: from a frame to the files of its imagers.
#include "libvantor/film/aov_output.h"

#include "libvantor/film/aov_table.h"

#include <new>

namespace vantor {

namespace {

float largest_of(const Picture &picture) {
    float largest = 0;
    for (const Color &pixel : picture.pixels)
        largest = std::max(largest, largest_component(pixel));
    return largest;
}

Picture shown_in_8_bits(const Picture &picture, const AovRow &row) {
    const float largest = largest_of(picture);
    Picture result = picture;
    for (Color &pixel : result.pixels)
        pixel = row.in_8_bits(pixel, largest);
    return result;
}

} // namespace

std::string write_file(const FileImager &imager, const FrameBuffer &frame, const std::string &comment) {
    const Picture &picture = frame.of(imager.aov);
    const AovRow &row = row_of(imager.aov);
    FileForm form{.comment = comment, .bits = imager.bits};
    for (const Aov layer : imager.layers)
        form.layers.push_back({std::string(aov_names[index_of(layer)]), &frame.of(layer)});
    if (!row.in_8_bits) {
        form.scale = imager.scale;
        form.display = imager.display;
        form.alpha = imager.has_alpha ? &frame.of(Aov::Alpha) : nullptr;
        return write_picture(picture, form, imager.path);
    }
    if (holds_floats(imager.path)) {
        if (imager.aov == Aov::ObjectId)
            form.bits = 0; // halves are whole numbers only up to 2048
        return write_picture(picture, form, imager.path);
    }
    form.display = row.display;
    return write_picture(shown_in_8_bits(picture, row), form, imager.path);
}

void show_tile(const std::vector<FileImager> &imagers, const FrameBuffer &frame, const PixelArea &tile) {
    try {
        for (const FileImager &imager : imagers) {
            const bool is_scaled = !row_of(imager.aov).in_8_bits && imager.scale != 1;
            if (holds_floats(imager.path) && !is_scaled)
                tile_handler()(frame.of(imager.aov), tile, imager.path);
        }
    } catch (const std::bad_alloc &) {
        // The pass itself may still have the memory that it needs.
    }
}

} // namespace vantor
