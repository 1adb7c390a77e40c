// Imager: where a picture goes, what it shows, and how it is made.
#include "libvantor/description/imager.h"

#include <cmath>

namespace vantor {

namespace {

Display display_of(std::string_view word) {
    return word == "linear" ? Display::Linear : word == "filmic" ? Display::Filmic : Display::Srgb;
}

// The widths are those at which the filters look about equally sharp.
Filter filter_of(const Parameters &parameters) {
    const std::string_view word = parameters.choice("filter");
    Filter filter;
    if (word == "box")
        filter = {Filter::Kind::Box, 1};
    else if (word == "gaussian")
        filter = {Filter::Kind::Gaussian, 3};
    else if (word == "blackman_harris")
        filter = {Filter::Kind::BlackmanHarris, 4};
    if (parameters.is_given("filter_width"))
        filter.width = static_cast<float>(parameters.number("filter_width"));
    return filter;
}

std::optional<Imager> make_file_imager(const Parameters &parameters, const CallReport &report) {
    const std::string path = parameters.text("name");
    if (!has_known_format(path)) {
        parameters.complain(
            "name",
            joined({in_quotes(path), " has no known ending (", known_endings, " are known); nothing will be written"}),
            report);
        return {};
    }
    Aov aov = aov_named(parameters.choice("what"));
    for (const std::string_view name : {"exposure", "display", "background", "denoise"})
        if (aov != Aov::Color && parameters.is_given(name))
            parameters.complain(name, R"(has an effect on "color" only)", report);
    if (aov == Aov::Color && holds_floats(path) && parameters.is_given("display"))
        parameters.complain("display", "has no effect on an .exr file, which is linear", report);
    const bool has_alpha = aov == Aov::Color && !parameters.is_on("background");
    const bool is_denoised = aov == Aov::Color && parameters.is_on("denoise");
    if (has_alpha)
        aov = Aov::Foreground;
    return FileImager{path,
                      aov,
                      static_cast<float>(std::exp2(parameters.number("exposure"))),
                      display_of(parameters.choice("display")),
                      filter_of(parameters),
                      parameters.is_given("filter") || parameters.is_given("filter_width"),
                      has_alpha,
                      is_denoised};
}

std::optional<Imager> make_settings(const Parameters &parameters, const CallReport &) {
    return Settings{static_cast<std::uint32_t>(parameters.integer("seed")),
                    static_cast<int>(parameters.integer("max_depth")),
                    static_cast<float>(parameters.number("clamp")),
                    parameters.is_on("final_gather"),
                    static_cast<int>(parameters.integer("first_sample")),
                    static_cast<int>(parameters.integer("samples_in_all")),
                    parameters.number("time_limit")};
}

constexpr ImagerMaker makers[] = {
    {"file", make_file_imager},
    {"settings", make_settings},
};

} // namespace

std::span<const ImagerMaker> imager_makers() { return makers; }

std::optional<Imager> make_imager(const Type &type, const Parameters &parameters, const CallReport &report) {
    return maker_of(imager_makers(), type).make(parameters, report);
}

} // namespace vantor
