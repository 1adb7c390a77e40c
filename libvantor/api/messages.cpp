// What the library offers beyond the interface that every one has: messages, progress, vocabulary and pictures
// for who asks.
#include "renderer/vt_messages.h"

#include "libvantor/base/progress.h"
#include "libvantor/base/report.h"
#include "libvantor/images/files.h"
#include "libvantor/parameters/vocabulary_text.h"
#include "renderer/vt_pictures.h"
#include "renderer/vt_vocabulary.h"

namespace {

VtPicture offered(const vantor::Picture &picture, const std::string &path, const VtSums *sums = nullptr) {
    const vantor::PixelArea &window = picture.window;
    return {path.c_str(),
            &picture.pixels[0].r,
            picture.full_width,
            picture.full_height,
            window.x0,
            window.y0,
            window.x1,
            window.y1,
            sums};
}

VtSums sums_of(const vantor::PartSums &part) {
    return {part.samples.first, part.samples.end, part.samples.in_all,
            vantor::reduction_names[static_cast<std::size_t>(part.reduction)].data(), &part.pixels[0].sum.r};
}

} // namespace

void VtSetMessageHandler(VtMessageHandler handler, void *context) {
    if (!handler)
        return vantor::set_message_handler({});
    vantor::set_message_handler(
        [=](bool is_mistake, const char *text) { handler(context, is_mistake ? VtMistake : VtNote, text); });
}

void VtSetProgressHandler(VtProgressHandler handler, void *context) {
    if (!handler)
        return vantor::set_progress_handler({});
    vantor::set_progress_handler([=](double fraction) { handler(context, fraction); });
}

void VtSetTileHandler(VtTileHandler handler, void *context) {
    if (!handler)
        return vantor::set_tile_handler({});
    vantor::set_tile_handler(
        [=](const vantor::Picture &picture, const vantor::PixelArea &tile, const std::string &path) {
            vantor::Picture part(picture.full_width, picture.full_height, tile);
            for (int y = tile.y0; y < tile.y1; ++y)
                for (int x = tile.x0; x < tile.x1; ++x)
                    part.at(x, y) = picture.at(x, y);
            const VtPicture shown = offered(part, path);
            handler(context, &shown);
        });
}

void VtSetPictureHandler(VtPictureHandler handler, void *context) {
    if (!handler)
        return vantor::set_picture_handler({});
    vantor::set_picture_handler([=](const vantor::Picture &picture, const std::string &path) {
        const VtSums sums = picture.part ? sums_of(*picture.part) : VtSums();
        const VtPicture whole = offered(picture, path, picture.part ? &sums : nullptr);
        return handler(context, &whole);
    });
}

const char *VtVocabulary() {
    try {
        return vantor::vocabulary_text().c_str();
    } catch (const std::exception &) {
        return nullptr; // no memory left
    }
}
