// Render: from a described scene to picture files.
#include "libvantor/passes/render.h"

#include "libvantor/passes/film.h"
#include "libvantor/passes/path.h"
#include "libvantor/pictures/files.h"

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

// The window in pixels; empty, and reported, if the request cannot be served.
PixelArea window_of(const RenderRequest &request, const CallReport &call) {
    const auto check = [&](VtLong value, VtLong most, const char *what) {
        const bool is_good = value >= 1 && value <= most;
        if (!is_good)
            call.diagnostic(joined({what, " is ", std::to_string(value), " (1 to ", std::to_string(most),
                                    " is possible); nothing is rendered"}));
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
             " is no part of the picture (0 <= x0 < x1 <= 1 and 0 <= y0 < y1 <= 1 is one); nothing is rendered"}));
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

// The open imagers whose files can be written; each of the others is reported.
std::vector<Imager> writable_imagers(const Registry &registry, const CallReport &call) {
    std::vector<Imager> imagers = registry.open_imagers();
    if (imagers.empty())
        call.diagnostic("no usable imager block is open, so nothing would be written (imagerBegin opens one); "
                        "nothing is rendered");
    std::erase_if(imagers, [&](const Imager &imager) {
        const std::string why = why_unwritable(imager.path);
        if (!why.empty())
            call.diagnostic(joined({"cannot write ", quoted(imager.path), ": ", why}));
        return !why.empty();
    });
    return imagers;
}

// The first numbers of a sample go to the film; its path has the rest.
constexpr std::uint32_t film_dimension = 0;
constexpr std::uint32_t path_dimension = 1;

// False if it was interrupted.
bool render_pixels(const World &world, int samples, const Interrupt &interrupt, Picture &picture) {
    const auto render_tile = [&](const PixelArea &tile) {
        for (int y = tile.y0; y < tile.y1; ++y)
            for (int x = tile.x0; x < tile.x1; ++x) {
                PixelFilm pixel;
                for (int s = 0; s < samples && !interrupt.requested(); ++s) {
                    const Sampler sampler(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                                          static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(samples));
                    const Pair place = PixelFilm::position(x, y, sampler.pair(film_dimension));
                    const Ray ray = world.camera.ray(place.u, place.v, picture.full_width, picture.full_height);
                    pixel.add(estimate_radiance(ray, world, sampler, path_dimension));
                }
                picture.at(x, y) = pixel.mean();
            }
    };
    return for_each_tile(picture.window, interrupt, render_tile);
}

} // namespace

void render(const RenderRequest &request, const Registry &registry, Report &report) {
    const CallReport call(report, "render");

    registry.report_open_blocks(call);
    const PixelArea window = window_of(request, call);
    if (!registry.camera())
        call.diagnostic("there is no camera (newCamera makes one); nothing is rendered");
    const std::vector<Imager> imagers = writable_imagers(registry, call);
    if (report.refuses_pictures()) {
        report.note(joined({"render: no picture is written: ", std::to_string(report.diagnostics()),
                            " diagnostics so far, and VANTOR_DIAGNOSTICS is strict"}));
        return;
    }
    if (window.is_empty() || !registry.camera() || imagers.empty())
        return;

    // The old handler is back before files are written: from there on a second Ctrl-C is the interpreter's business.
    Picture picture(request.width, request.height, window);
    {
        const Interrupt interrupt;
        const std::optional<World> world = freeze(registry, interrupt);
        if (!world || !render_pixels(*world, request.samples, interrupt, picture)) {
            report.note("render: interrupted; no picture is written");
            return;
        }
    }

    for (const Imager &imager : imagers)
        if (const std::string why = write_picture(picture, imager.scale, imager.path); !why.empty())
            call.diagnostic(joined({"cannot write ", quoted(imager.path), ": ", why}));
}

} // namespace vantor
