// Render request: what a script asks a render pass for, and whether it can be served.
#include "libvantor/passes/render_request.h"

namespace vantor {

namespace {

// Sampler and camera count pixels in 16 bits; and a picture has to fit the memory.
constexpr VtLong largest_side = 65536;
constexpr long most_pixels = 1L << 28;
constexpr VtLong most_samples = 1 << 24;

// The pixels whose centres lie between the fractions: windows that touch share no pixel and leave none out.
void pixels_between(double low, double high, VtLong size, int &first, int &end) {
    first = static_cast<int>(std::ceil(low * size - 0.5));
    end = static_cast<int>(std::ceil(high * size - 0.5));
}

} // namespace

PixelArea window_of(const RenderRequest &request, const CallReport &call) {
    const auto check = [&](VtLong value, VtLong most, const char *what) {
        const bool is_good = value >= 1 && value <= most;
        if (!is_good)
            call.diagnostic(joined({what, " is ", std::to_string(value), " (expected 1 to ", std::to_string(most),
                                    "); nothing is rendered"}));
        return is_good;
    };
    if (!check(request.width, largest_side, "the width") || !check(request.height, largest_side, "the height") ||
        !check(request.samples, most_samples, "the number of samples"))
        return {};

    const std::string fractions = joined({"the window (", text_of(request.x0), ", ", text_of(request.y0), ", ",
                                          text_of(request.x1), ", ", text_of(request.y1), ")"});
    if (!(request.x0 >= 0 && request.x0 < request.x1 && request.x1 <= 1 && request.y0 >= 0 && request.y0 < request.y1 &&
          request.y1 <= 1)) {
        call.diagnostic(joined(
            {fractions,
             " is no part of the picture (expected 0 <= x0 < x1 <= 1 and 0 <= y0 < y1 <= 1); nothing is rendered"}));
        return {};
    }
    PixelArea window;
    pixels_between(request.x0, request.x1, request.width, window.x0, window.x1);
    pixels_between(request.y0, request.y1, request.height, window.y0, window.y1);
    if (window.is_empty()) {
        call.diagnostic(joined({fractions, " has no pixel's centre in it; nothing is rendered"}));
        return {};
    }
    if (static_cast<long>(window.width()) * window.height() > most_pixels) {
        call.diagnostic(
            joined({"the window has more than ", std::to_string(most_pixels), " pixels; nothing is rendered"}));
        return {};
    }
    return window;
}

std::optional<SampleRange> samples_of(const RenderRequest &request, const Settings &settings, const CallReport &call) {
    if (request.samples < 1 || request.samples > most_samples)
        return {}; // which window_of() has reported
    const SampleRange range{settings.first_sample, settings.first_sample + static_cast<int>(request.samples),
                            settings.samples_in_all ? settings.samples_in_all
                                                    : settings.first_sample + static_cast<int>(request.samples)};
    const std::string text = joined({"samples ", std::to_string(range.first), " to ", std::to_string(range.end - 1),
                                     " of ", std::to_string(range.in_all)});
    if (range.end > range.in_all || range.in_all > most_samples) {
        call.diagnostic(joined({text, " are more than there are (expected up to ", std::to_string(most_samples),
                                " in all); nothing is rendered"}));
        return {};
    }
    if (!range.is_whole() && !range.is_subtree()) {
        call.diagnostic(
            joined({text, " cannot be put together with others (expected 16, 32, 64, 128 ... samples from a "
                          "multiple of as many, or all the rest from there); nothing is rendered"}));
        return {};
    }
    return range;
}

bool check_noise_settings(const Settings &settings, const SampleRange &samples, const CallReport &call) {
    if (!settings.looks_at_noise())
        return false;
    if (!samples.is_whole())
        call.diagnostic(
            joined({settings.is_adaptive ? "\"adaptive\"" : "\"noise\"",
                    " takes all samples of a picture in one pass; of this part of them every pixel gets all"}));
    return samples.is_whole();
}

bool check_whole_picture(const RenderRequest &request, const CallReport &call) {
    const bool may_be = static_cast<long>(request.width) * request.height <= most_pixels;
    if (!may_be)
        call.diagnostic(joined({"\"adaptive\" and \"noise\" look at the whole picture, which has more than ",
                                std::to_string(most_pixels), " pixels; nothing is rendered"}));
    return may_be;
}

std::vector<FileImager> writable_imagers(const Registry &registry, const PixelArea &window, const CallReport &call) {
    std::vector<FileImager> imagers = registry.writing_imagers();
    if (imagers.empty())
        call.diagnostic("there is no usable imager, so nothing would be written (newImager makes one); nothing is "
                        "rendered");
    std::erase_if(imagers, [&](const FileImager &imager) {
        const std::string why = why_unwritable(imager.path, window.width(), window.height());
        if (!why.empty())
            call.diagnostic(joined({"cannot write ", in_quotes(imager.path), ": ", why}));
        return !why.empty();
    });
    // From the outermost to the innermost: of the same file, the last would be left.
    std::vector<FileImager> written;
    for (FileImager &imager : imagers) {
        if (std::erase_if(written, [&](const FileImager &before) { return before.path == imager.path; }) > 0)
            call.diagnostic(
                joined({in_quotes(imager.path), " is the file of two imagers (the inner one's picture counts)"}));
        written.push_back(std::move(imager));
    }
    return written;
}

Filter common_filter(const std::vector<FileImager> &imagers, const CallReport &call) {
    const Filter filter = imagers.back().filter;
    for (const FileImager &imager : imagers)
        if (imager.asks_for_filter && imager.filter != filter)
            call.diagnostic(
                joined({in_quotes(imager.path), " asks for another filter than ", in_quotes(imagers.back().path),
                        ", whose filter counts (all files of one pass share the innermost one's)"}));
    return filter;
}

} // namespace vantor
