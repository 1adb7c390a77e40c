// Imager: where a picture goes, what it shows, and how it is made.
#include "libvantor/description/imager.h"

#include "libvantor/parameters/suggestion.h"

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

// Of a channel; 0 for what is usual in the format.
int bits_of(const Parameters &parameters, const std::string &path, const CallReport &report) {
    if (!parameters.is_given("bits"))
        return 0;
    const auto bits = static_cast<int>(parameters.integer("bits"));
    const std::span<const int> known = bits_of_format(path);
    if (std::ranges::find(known, bits) != known.end())
        return bits;
    const std::string expected = joined(
        {std::to_string(known[0]), known.size() > 1 ? joined({" or ", std::to_string(known[1])}) : std::string()});
    parameters.complain("bits",
                        joined({"is ", std::to_string(bits), ", which such a file does not have (expected ", expected,
                                "; ", std::to_string(known[0]), " counts)"}),
                        report);
    return 0;
}

// The words of a text, which spaces or commas divide.
std::vector<std::string_view> words_in(std::string_view text) {
    constexpr std::string_view dividers = ", \t\n";
    std::vector<std::string_view> result;
    for (std::size_t end = 0;;) {
        const std::size_t begin = text.find_first_not_of(dividers, end);
        if (begin == std::string_view::npos)
            return result;
        end = std::min(text.find_first_of(dividers, begin), text.size());
        result.push_back(text.substr(begin, end - begin));
    }
}

std::vector<Aov> layers_of(const Parameters &parameters, const std::string &path, Aov shown, const CallReport &report) {
    std::vector<Aov> layers;
    if (!parameters.is_given("layers"))
        return layers;
    if (!holds_floats(path)) {
        parameters.complain("layers", "has an effect on .exr files only", report);
        return layers;
    }
    const Words known(std::begin(aov_names), std::end(aov_names));
    for (const std::string_view word : words_in(parameters.text("layers"))) {
        const Aov aov = aov_named(word);
        if (std::ranges::find(known, word) == known.end())
            parameters.complain("layers", joined({"has ", in_quotes(word), suggestion(word, known)}), report);
        else if (aov == shown || std::ranges::find(layers, aov) != layers.end())
            parameters.complain("layers", joined({"has ", in_quotes(word), ", which the file has already"}), report);
        else
            layers.push_back(aov);
    }
    return layers;
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
    const int bits = bits_of(parameters, path, report);
    if (bits == 16 && holds_floats(path) && aov == Aov::ObjectId)
        parameters.complain("bits", R"(is 16, which "object_id" is too large for (it keeps 32))", report);
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
                      is_denoised,
                      bits,
                      layers_of(parameters, path, aov, report)};
}

std::optional<Imager> make_settings(const Parameters &parameters, const CallReport &) {
    return Settings{static_cast<std::uint32_t>(parameters.integer("seed")),
                    static_cast<int>(parameters.integer("max_depth")),
                    static_cast<float>(parameters.number("clamp")),
                    parameters.is_on("final_gather"),
                    static_cast<int>(parameters.integer("first_sample")),
                    static_cast<int>(parameters.integer("samples_in_all")),
                    parameters.number("time_limit"),
                    parameters.number("noise"),
                    parameters.is_on("adaptive")};
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
