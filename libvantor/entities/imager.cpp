// Imager: where a picture goes.
#include "libvantor/entities/imager.h"

#include "libvantor/pictures/files.h"

#include <cmath>

namespace vantor {

namespace {

Display display_of(std::string_view word) {
    return word == "linear" ? Display::Linear : word == "filmic" ? Display::Filmic : Display::Srgb;
}

} // namespace

std::optional<Imager> make_imager(const Parameters &parameters, const CallReport &report) {
    const std::string path = parameters.text("name");
    if (!has_known_format(path)) {
        parameters.complain(
            "name",
            joined({quoted(path), " has no known ending (", known_endings, " are known); nothing will be written"}),
            report);
        return {};
    }
    if (holds_floats(path) && parameters.is_given("display"))
        parameters.complain("display", "has no effect on an .exr file, which is linear", report);
    return Imager{path, static_cast<float>(std::exp2(parameters.number("exposure"))),
                  display_of(parameters.choice("display"))};
}

} // namespace vantor
