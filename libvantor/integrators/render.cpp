// Render: from a described scene to picture files.
#include "libvantor/integrators/render.h"

#include "libvantor/film/aov_output.h"
#include "libvantor/film/film.h"
#include "libvantor/film/filter.h"
#include "libvantor/integrators/path.h"

#include <atomic>

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

// The imagers whose files can be written; each of the others is reported.
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

// The first numbers of a sample go to the film and the lens; its path has the rest.
constexpr std::uint32_t film_dimension = 0;
constexpr std::uint32_t lens_dimension = 1;
constexpr std::uint32_t path_dimension = 2;

// Paths are traced in waves: some samples of all pixels of a block. The blocks are those of the whole picture, and a
// window renders every block that it touches in full. So a path has the same company in every window, and no rounding
// that depends on its neighbours in a packet of rays can make a difference.
constexpr int block_side = 4;
constexpr int wave_samples = 16;

PixelArea whole_blocks(const PixelArea &window, int width, int height) {
    const auto down = [](int x) { return x / block_side * block_side; };
    const auto up = [](int x) { return (x + block_side - 1) / block_side * block_side; };
    return {down(window.x0), down(window.y0), std::min(up(window.x1), width), std::min(up(window.y1), height)};
}

// What a pass has made. Pixels that are not finished are black.
struct Result {
    PixelArea window;
    int width; ///< Of the whole picture.
    int height;
    std::array<std::optional<Picture>, aov_count> pictures; ///< What somebody asks for, in the order of Aov.
    long finished = 0;                                      ///< Pixels.

    Result(const RenderRequest &request, const PixelArea &part, const std::vector<FileImager> &imagers)
        : window(part), width(request.width), height(request.height) {
        for (const FileImager &imager : imagers)
            if (std::optional<Picture> &picture = of(imager.aov); !picture)
                picture.emplace(width, height, window);
    }

    std::optional<Picture> &of(Aov aov) { return pictures[static_cast<std::size_t>(aov)]; }
    const std::optional<Picture> &of(Aov aov) const { return pictures[static_cast<std::size_t>(aov)]; }

    bool has_aovs() const {
        for (std::size_t i = 0; i < aov_count; ++i)
            if (pictures[i] && static_cast<Aov>(i) != Aov::Color && static_cast<Aov>(i) != Aov::Variance)
                return true;
        return false;
    }
    long pixels() const { return static_cast<long>(window.width()) * window.height(); }
    bool is_whole() const { return finished == pixels(); }
};

// What all blocks of a pass have in common.
struct Pass {
    const World &world;
    const View &view;
    IrradianceLookup indirect;
    FilterSampler filter;
    int samples;
    bool has_aovs;
    const Interrupt &interrupt;
};

using BlockFilm = std::array<PixelFilm, std::size_t{block_side} * block_side>;

// Returns how many pixels of the picture are finished.
int finish_block(const PixelArea &block, const BlockFilm &film, Result &result) {
    int finished = 0;
    std::size_t pixel = 0;
    for (int y = block.y0; y < block.y1; ++y)
        for (int x = block.x0; x < block.x1; ++x, ++pixel) {
            if (!result.window.contains(x, y))
                continue;
            ++finished;
            for (std::size_t i = 0; i < aov_count; ++i)
                if (result.pictures[i])
                    result.pictures[i]->at(x, y) = film[pixel].value(static_cast<Aov>(i));
        }
    return finished;
}

// The paths of some samples of all pixels of a block, at their start.
class Wave {
  public:
    explicit Wave(const Pass &of_pass) : pass(of_pass) {
        // The aovs stay where they are: there is room for all of a wave.
        aovs.reserve(pass.has_aovs ? most_paths : 0);
        paths.reserve(most_paths);
    }

    void start(const PixelArea &block, int first_sample, int end_sample, int width, int height) {
        samplers.clear();
        for (int y = block.y0; y < block.y1; ++y)
            for (int x = block.x0; x < block.x1; ++x)
                for (int s = first_sample; s < end_sample; ++s)
                    samplers.emplace_back(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                                          static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(pass.samples),
                                          pass.view.settings.seed);
        on_film.resize(samplers.size());
        get_2d_of(samplers, film_dimension, on_film);
        on_lens.resize(samplers.size());
        const Camera &camera = pass.view.camera;
        if (camera.has_lens())
            get_2d_of(samplers, lens_dimension, on_lens);

        paths.clear();
        aovs.clear();
        std::size_t i = 0;
        for (int y = block.y0; y < block.y1; ++y)
            for (int x = block.x0; x < block.x1; ++x)
                for (int s = first_sample; s < end_sample; ++s, ++i) {
                    const Point2f place = pass.filter.position(x, y, on_film[i]);
                    const Ray ray = camera.ray(place.u, place.v, width, height, on_lens[i]);
                    AovSample *seen = pass.has_aovs ? &aovs.emplace_back(AovSample{ray.origin}) : nullptr;
                    paths.push_back({ray, samplers[i], media_around(ray), seen});
                }
    }

    std::vector<Path> paths;
    std::vector<AovSample> aovs; ///< Of each path, if anybody asks.

  private:
    MediumStack media_around(const Ray &ray) const {
        const World &world = pass.world;
        const bool has_own = world.has_media && pass.view.camera.has_many_origins();
        return has_own ? media_at(ray.origin, world.tracer, world.placements) : pass.view.camera_media;
    }

    static constexpr std::size_t most_paths = std::size_t{block_side} * block_side * wave_samples;

    const Pass &pass;
    std::vector<Sampler> samplers;
    std::vector<Point2f> on_film;
    std::vector<Point2f> on_lens;
};

// Returns how many pixels of the picture are finished: none if it was interrupted.
int render_block(const PixelArea &block, const Pass &pass, Result &result) {
    BlockFilm film;
    Wave wave(pass);
    for (int first = 0; first < pass.samples; first += wave_samples) {
        if (pass.interrupt.requested())
            return 0;
        const int end = std::min(first + wave_samples, pass.samples);
        wave.start(block, first, end, result.width, result.height);
        trace_paths(wave.paths, pass.world, pass.view.settings, path_dimension, pass.indirect);
        for (std::size_t i = 0; i < wave.paths.size(); ++i) {
            PixelFilm &pixel = film[i / static_cast<std::size_t>(end - first)];
            pixel.add(wave.paths[i].radiance);
            if (pass.has_aovs)
                pixel.add_aovs(wave.aovs[i]);
        }
    }
    return finish_block(block, film, result);
}

void render_pixels(const Pass &pass, Result &result) {
    std::atomic<long> finished = 0;
    const auto render_tile = [&](const PixelArea &tile) {
        for (int y = tile.y0; y < tile.y1; y += block_side)
            for (int x = tile.x0; x < tile.x1; x += block_side)
                finished += render_block({x, y, std::min(x + block_side, tile.x1), std::min(y + block_side, tile.y1)},
                                         pass, result);
    };
    for_each_tile(whole_blocks(result.window, result.width, result.height), pass.interrupt, render_tile);
    result.finished = finished;
}

// The filter of the innermost file. All files of a pass are made of the same samples.
Filter common_filter(const std::vector<FileImager> &imagers, const CallReport &call) {
    const Filter filter = imagers.back().filter;
    for (const FileImager &imager : imagers)
        if (imager.asks_for_filter && imager.filter != filter)
            call.diagnostic(
                joined({in_quotes(imager.path), " asks for another filter than ", in_quotes(imagers.back().path),
                        ", whose filter counts (all files of one pass share the innermost one's)"}));
    return filter;
}

// Nothing if nothing is finished.
std::optional<Result> render_picture(const RenderRequest &request, const PixelArea &window,
                                     const std::vector<FileImager> &imagers, const Filter &filter, const World &world,
                                     const View &view, const IrradianceCache *indirect, const Interrupt &interrupt) {
    Result result(request, window, imagers);
    render_pixels({world,
                   view,
                   {indirect, view.settings.gathers ? 1 : 0},
                   FilterSampler(filter),
                   static_cast<int>(request.samples),
                   result.has_aovs(),
                   interrupt},
                  result);
    if (result.finished == 0)
        return {};
    return result;
}

// How much of a picture is finished, for a reader: "42 % of the pixels", and never 0 or 100 %.
std::string share_text(const Result &result) {
    const long percent = 100 * result.finished / result.pixels();
    return joined({percent == 0 ? "less than 1" : std::to_string(percent), " % of the pixels"});
}

// What goes into a file besides its pixels.
std::string comment_of(const RenderRequest &request, const Result &result) {
    std::string comment = joined({"vantorPM ", VANTOR_VERSION, "; ", std::to_string(request.width), " x ",
                                  std::to_string(request.height), " pixels; ", std::to_string(request.samples),
                                  request.samples == 1 ? " sample a pixel" : " samples a pixel"});
    if (!result.is_whole())
        comment += joined({"; interrupted: ", share_text(result), " are finished"});
    return comment;
}

// Every file; what is not written is reported.
void write_files(const std::vector<FileImager> &imagers, const Result &result, const RenderRequest &request,
                 const CallReport &call, const Report &report) {
    const std::string comment = comment_of(request, result);
    for (const FileImager &imager : imagers) {
        const std::string why = write_file(imager, *result.of(imager.aov), comment);
        if (!why.empty())
            call.diagnostic(joined({"cannot write ", in_quotes(imager.path), ": ", why}));
        else if (!result.is_whole())
            report.note(joined({"render: interrupted; ", share_text(result), " are in ", in_quotes(imager.path)}));
    }
}

} // namespace

void render(const RenderRequest &request, const Registry &registry, WorldCache &worlds, const IrradianceCache *indirect,
            Report &report) {
    const CallReport call(report, "render");
    if (indirect && registry.settings().max_bounces < Settings().max_bounces) {
        report.note("render: \"max_depth\" is given, which the result of radiosity() cannot keep; paths are followed");
        indirect = nullptr;
    }

    registry.report_open_blocks(call);
    const PixelArea window = window_of(request, call);
    if (!registry.camera())
        call.diagnostic("there is no camera (newCamera makes one); nothing is rendered");
    const std::vector<FileImager> imagers = writable_imagers(registry, window, call);
    const Filter filter = imagers.empty() ? Filter() : common_filter(imagers, call);
    if (report.refuses_pictures()) {
        report.note(joined({"render: no picture is written: ", std::to_string(report.diagnostics()),
                            " diagnostics so far, and VANTOR_DIAGNOSTICS is strict"}));
        return;
    }
    if (window.is_empty() || !registry.camera() || imagers.empty())
        return;

    // Until the files are there: where Ctrl-C ends the process, it keeps what is finished all the same.
    const Interrupt interrupt;
    std::optional<Result> result;
    try {
        const World &world = worlds.current(registry, interrupt);
        const View view = view_of(world, registry);
        result = render_picture(request, window, imagers, filter, world, view, indirect, interrupt);
    } catch (const Interrupted &) {
        // Of a world nothing can be shown before it is whole.
    }
    if (result)
        write_files(imagers, *result, request, call, report);
    else
        report.note("render: interrupted; no picture is written");
}

} // namespace vantor
