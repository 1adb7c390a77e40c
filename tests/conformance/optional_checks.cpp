// Checks of what a library may export besides, where it does.
#include "checks.h"
#include "objects.h"
#include "renderer/vt_messages.h"
#include "renderer/vt_pictures.h"
#include "renderer/vt_vocabulary.h"
#include "use.h"

#include <algorithm>
#include <atomic>
#include <sstream>

namespace {

// The function of that C name; null if the library does without it.
template <class Function> Function *optional_function(const Library &library, const char *name) {
    return reinterpret_cast<Function *>(library.address(name));
}

void check_vocabulary(const Library &library) {
    const auto vocabulary = optional_function<decltype(VtVocabulary)>(library, "VtVocabulary");
    if (!vocabulary)
        return;
    const char *text = vocabulary();
    require(text != nullptr, "it is a null pointer");
    require(text == vocabulary() || std::string(text) == vocabulary(), "another text comes at another call");
    std::istringstream lines(text);
    int number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        const auto fields = std::ranges::count(line, '\t') + 1;
        require(fields == 3 || fields == 8,
                "line " + std::to_string(number) + " has " + std::to_string(fields) + " fields, expected 3 or 8");
    }
}

struct Heard {
    int messages = 0;
    int pictures = 0;
    std::atomic<int> tiles = 0; // come from several threads
    std::atomic<int> wrong = 0;
};

void hear_message(void *context, VtMessageKind kind, const char *text) {
    auto &heard = *static_cast<Heard *>(context);
    ++heard.messages;
    heard.wrong += (kind != VtNote && kind != VtMistake) || !text || std::strchr(text, '\n');
}

void hear_progress(void *context, double fraction) {
    auto &heard = *static_cast<Heard *>(context);
    heard.wrong += !(fraction >= 0 && fraction <= 1);
}

bool is_sound(const VtPicture *picture) {
    const bool has_window = picture->x0 >= 0 && picture->x0 < picture->x1 && picture->x1 <= picture->width &&
                            picture->y0 >= 0 && picture->y0 < picture->y1 && picture->y1 <= picture->height;
    const VtSums *sums = picture->sums;
    const bool has_sums = !sums || (sums->values && sums->reduction && sums->first >= 0 && sums->first < sums->end &&
                                    sums->end <= sums->in_all);
    return picture->path && picture->pixels && has_window && has_sums;
}

bool look_at_picture(void *context, const VtPicture *picture) {
    auto &heard = *static_cast<Heard *>(context);
    ++heard.pictures;
    heard.wrong += !is_sound(picture);
    return true;
}

void look_at_tile(void *context, const VtPicture *tile) {
    auto &heard = *static_cast<Heard *>(context);
    ++heard.tiles;
    heard.wrong += !is_sound(tile);
}

// A handler is called until it is taken away; whether there is anything to tell is the library's business.
void check_handlers(const Library &library) {
    const auto set_messages = optional_function<decltype(VtSetMessageHandler)>(library, "VtSetMessageHandler");
    const auto set_progress = optional_function<decltype(VtSetProgressHandler)>(library, "VtSetProgressHandler");
    const auto set_pictures = optional_function<decltype(VtSetPictureHandler)>(library, "VtSetPictureHandler");
    const auto set_tiles = optional_function<decltype(VtSetTileHandler)>(library, "VtSetTileHandler");
    const MadeScene scene(library);
    Heard heard;
    if (set_tiles)
        set_tiles(look_at_tile, &heard);
    if (set_pictures)
        set_pictures(look_at_picture, &heard);
    if (set_messages)
        set_messages(hear_message, &heard);
    if (set_progress)
        set_progress(hear_progress, &heard);
    use_everything(library, *scene);
    if (set_messages)
        set_messages(nullptr, nullptr);
    if (set_progress)
        set_progress(nullptr, nullptr);
    if (set_pictures)
        set_pictures(nullptr, nullptr);
    if (set_tiles)
        set_tiles(nullptr, nullptr);
    const int before = heard.messages + heard.pictures + heard.tiles;
    use_everything(library, *scene);
    require(heard.wrong == 0, "a handler is given what it cannot use");
    require(heard.messages + heard.pictures + heard.tiles == before, "a handler is called that was taken away");
}

} // namespace

Group optional_checks() {
    return {
        {"VtVocabulary, where exported, gives lines of three or eight fields", check_vocabulary},
        {"VtSetMessageHandler, VtSetProgressHandler, VtSetPictureHandler and VtSetTileHandler, where exported, keep to "
         "their handler",
         check_handlers},
    };
}
