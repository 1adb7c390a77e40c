// AOV output: from what a pass has made to the files of its imagers.
#include "libvantor/film/aov_output.h"

#include "libvantor/base/random.h"

namespace vantor {

namespace {

// -1 to 1 as 0 to 1.
Color shifted(Color normal) { return {0.5f + 0.5f * normal.r, 0.5f + 0.5f * normal.g, 0.5f + 0.5f * normal.b}; }

// A colour of its own for each object, well above the black of none.
Color color_of(float id) {
    if (!(id > 0))
        return {};
    const std::uint32_t mixed = sobol::hash(static_cast<std::uint32_t>(static_cast<std::int64_t>(id)));
    const auto channel = [](std::uint32_t byte) { return 0.25f + 0.75f * static_cast<float>(byte & 255) / 255; };
    return {channel(mixed), channel(mixed >> 8), channel(mixed >> 16)};
}

template <class Change> Picture changed(const Picture &picture, Change change) {
    Picture result = picture;
    for (Color &pixel : result.pixels)
        pixel = change(pixel);
    return result;
}

float one_over_largest(const Picture &picture) {
    float largest = 0;
    for (const Color &pixel : picture.pixels)
        largest = std::max(largest, largest_component(pixel));
    return largest > 0 ? 1 / largest : 1.0f;
}

} // namespace

std::string write_file(const FileImager &imager, const Picture &picture, const std::string &comment) {
    const FileForm plain{1, Display::Linear, comment};
    if (imager.aov == Aov::Color)
        return write_picture(picture, {imager.scale, imager.display, comment}, imager.path);
    if (holds_floats(imager.path))
        return write_picture(picture, plain, imager.path);
    switch (imager.aov) {
    case Aov::Albedo:
        return write_picture(picture, {1, Display::Srgb, comment}, imager.path);
    case Aov::Normal:
        return write_picture(changed(picture, shifted), plain, imager.path);
    case Aov::Depth:
        return write_picture(picture, {one_over_largest(picture), Display::Linear, comment}, imager.path);
    case Aov::ObjectId:
        return write_picture(changed(picture, [](Color id) { return color_of(id.r); }), plain, imager.path);
    default:
        return write_picture(picture, plain, imager.path);
    }
}

} // namespace vantor
