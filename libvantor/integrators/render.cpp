// Render: from a described scene to picture files.
#include "libvantor/integrators/render.h"

#include "libvantor/denoising/denoiser.h"
#include "libvantor/film/aov_output.h"
#include "libvantor/integrators/rounds.h"
#include "libvantor/integrators/tile_loop.h"

#include <atomic>

namespace vantor {

namespace {

// How much of a picture is finished, for a reader: "42 % of the pixels", and never 0 or 100 %.
std::string finished_text(const FrameBuffer &frame) {
    const long percent = 100 * frame.finished / frame.pixels();
    return joined({percent == 0 ? "less than 1" : std::to_string(percent), " % of the pixels"});
}

// What goes into a file besides its pixels.
std::string comment_of(const RenderRequest &request, const SampleRange &asked, const SampleRange &made,
                       const FrameBuffer &frame) {
    const int count = made.count();
    std::string comment =
        joined({"vantorPM ", VANTOR_VERSION, "; ", std::to_string(request.width), " x ", std::to_string(request.height),
                " pixels; ", std::to_string(count), count == 1 ? " sample a pixel" : " samples a pixel"});
    if (!asked.is_whole())
        comment += joined({", from number ", std::to_string(asked.first), " of ", std::to_string(asked.in_all)});
    if (made.end < asked.end)
        comment += joined({"; stopped by the time limit, ", std::to_string(asked.count()), " were asked for"});
    if (!frame.is_whole())
        comment += joined({"; interrupted: ", finished_text(frame), " are finished"});
    return comment;
}

// All that the imagers show.
void add_aovs(FrameBuffer &frame, const std::vector<FileImager> &imagers) {
    for (const FileImager &imager : imagers) {
        frame.add(imager.aov);
        if (imager.has_alpha)
            frame.add(Aov::Alpha);
        for (const Aov layer : imager.layers)
            frame.add(layer);
    }
}

// A frame with what the denoiser needs, and with its margin around the window. Tiles go to the window's own frame as
// they are finished, which counts their pixels and shows them.
class WideFrame {
  public:
    WideFrame(const std::vector<FileImager> &imagers, FrameBuffer &of_window)
        : wide(of_window.width(), of_window.height(),
               with_denoiser_margin(of_window.window(), of_window.width(), of_window.height())),
          window(of_window) {
        add_aovs(wide, imagers);
        wide.add_guides();
        wide.on_finished = [this](const PixelArea &tile) { pass_on(tile); };
    }
    WideFrame(const WideFrame &) = delete;
    WideFrame &operator=(const WideFrame &) = delete;

    FrameBuffer &frame() { return wide; }

    // After rendering: the window gets its pixels, and the denoised ones are returned; nothing if the pass is
    // interrupted, or has too few samples.
    std::optional<FrameBuffer> denoise(const SampleRange &made, const Interrupt &interrupt, const Report &report) {
        window.finished = finished;
        if (!wide.is_whole())
            return {};
        window.for_each([&](Aov aov, Picture &picture) { picture.copy(wide.of(aov), window.window()); });
        window.finished = window.pixels();
        if (made.count() < least_denoised_samples) {
            report.note("render: \"denoise\" takes 2 samples a pixel or more; the picture is written as it is");
            return {};
        }
        try {
            return denoised(wide, made, window.window(), interrupt);
        } catch (const Interrupted &) {
            report.note("render: interrupted; the picture is not denoised");
            return {};
        }
    }

  private:
    void pass_on(const PixelArea &tile) {
        const PixelArea &area = window.window();
        const PixelArea seen{std::max(tile.x0, area.x0), std::max(tile.y0, area.y0), std::min(tile.x1, area.x1),
                             std::min(tile.y1, area.y1)};
        if (seen.is_empty())
            return;
        window.for_each([&](Aov aov, Picture &picture) { picture.copy(wide.of(aov), seen); });
        finished += static_cast<long>(seen.width()) * seen.height();
        if (window.on_finished)
            window.on_finished(seen);
    }

    FrameBuffer wide;
    FrameBuffer &window;
    std::atomic<long> finished = 0;
};

// Shows once more what has changed.
void show_denoised(const std::vector<FileImager> &imagers, const FrameBuffer &frame) {
    std::vector<FileImager> changed = imagers;
    std::erase_if(changed, [](const FileImager &imager) { return !imager.is_denoised; });
    show_tile(changed, frame, frame.window());
}

// Every file; what is not written is reported.
void write_files(const std::vector<FileImager> &imagers, const FrameBuffer &frame,
                 const std::optional<FrameBuffer> &smooth, const std::string &comment, const CallReport &call,
                 const Report &report) {
    for (const FileImager &imager : imagers) {
        const bool is_denoised = imager.is_denoised && smooth;
        const std::string why =
            write_file(imager, is_denoised ? *smooth : frame, is_denoised ? comment + "; denoised" : comment);
        if (!why.empty())
            call.diagnostic(joined({"cannot write ", in_quotes(imager.path), ": ", why}));
        else if (!frame.is_whole())
            report.note(joined({"render: interrupted; ", finished_text(frame), " are in ", in_quotes(imager.path)}));
    }
}

} // namespace

void render(const RenderRequest &request, const Registry &registry, WorldCache &worlds, const IrradianceCache *indirect,
            Report &report) {
    // From the first check until the files are there: Ctrl-C is heard even where a disk is slow to answer, and what is
    // finished is kept even where it then ends the process.
    const Interrupt interrupt;
    const Deadline deadline(registry.settings().time_limit);
    const CallReport call(report, "render");
    if (indirect && registry.settings().max_bounces < Settings().max_bounces) {
        report.note("render: \"max_depth\" is given, which the result of radiosity() cannot keep; paths are followed");
        indirect = nullptr;
    }

    registry.report_open_blocks(call);
    const PixelArea window = window_of(request, call);
    if (!registry.camera())
        call.diagnostic("there is no camera (newCamera makes one); nothing is rendered");
    const std::optional<SampleRange> samples = samples_of(request, registry.settings(), call);
    const std::vector<FileImager> imagers = writable_imagers(registry, window, call);
    const Filter filter = imagers.empty() ? Filter() : common_filter(imagers, call);
    const bool denoises = samples && is_any_denoised(imagers, *samples, call);
    if (report.refuses_pictures()) {
        report.note(joined({"render: no picture is written: ", std::to_string(report.diagnostics()),
                            " diagnostics so far, and VANTOR_DIAGNOSTICS is strict"}));
        return;
    }
    if (window.is_empty() || !samples || !registry.camera() || imagers.empty())
        return;
    registry.tell_vain(std::ranges::any_of(imagers, [](const FileImager &imager) {
        return shows_light(imager.aov) || std::ranges::any_of(imager.layers, shows_light);
    }));

    for (const FileImager &imager : imagers)
        if (!samples->is_whole() && !imager.layers.empty())
            report.note(joined({"render: the layers of ", in_quotes(imager.path),
                                " are of its samples alone, without the sums that parts are put together by"}));

    FrameBuffer frame(request.width, request.height, window);
    add_aovs(frame, imagers);
    std::optional<WideFrame> wide;
    if (denoises)
        wide.emplace(imagers, frame);
    FrameBuffer &rendered = wide ? wide->frame() : frame;
    if (tile_handler())
        frame.on_finished = [&](const PixelArea &tile) { show_tile(imagers, frame, tile); };
    SampleRange made = *samples;
    try {
        const World &world = worlds.current(registry, interrupt);
        const View view = view_of(world, registry);
        const IrradianceLookup lookup{indirect, view.settings.gathers ? 1 : 0};
        const auto render_samples = [&](const SampleRange &range, FrameBuffer &into) {
            render_tiles(world, view, lookup, filter, range, interrupt, into);
        };
        if (view.settings.time_limit > 0) {
            made = render_until(deadline, *samples, interrupt, render_samples, rendered);
        } else {
            if (!samples->is_whole())
                frame.keep_sums(*samples);
            render_samples(*samples, rendered);
        }
    } catch (const Interrupted &) {
        // Of a world nothing can be shown before it is whole: no pixel is finished.
    }
    std::optional<FrameBuffer> smooth;
    if (wide)
        smooth = wide->denoise(made, interrupt, report);
    if (frame.finished == 0) {
        report.note("render: interrupted; no picture is written");
        return;
    }
    if (!frame.is_whole())
        frame.forget_sums();
    if (smooth && tile_handler())
        show_denoised(imagers, *smooth);
    write_files(imagers, frame, smooth, comment_of(request, *samples, made, frame), call, report);
}

} // namespace vantor
