// Render: from a described scene to picture files.
#include "libvantor/passes/render.h"

#include "libvantor/denoising/denoiser.h"
#include "libvantor/film/aov_output.h"
#include "libvantor/passes/adaptive_rounds.h"
#include "libvantor/passes/tile_loop.h"

#include <atomic>
#include <charconv>

namespace vantor {

namespace {

// How much of a picture is finished, for a reader: "42 % of the pixels", and never 0 or 100 %.
std::string finished_text(const FrameBuffer &frame) {
    const long percent = 100 * frame.finished / frame.pixels();
    return joined({percent == 0 ? "less than 1" : std::to_string(percent), " % of the pixels"});
}

// "16 to 240", of the pixels of an area.
std::string counts_text(const FrameBuffer &frame, const PixelArea &area) {
    int fewest = frame.counts[frame.index(area.x0, area.y0)];
    int most = fewest;
    for (int y = area.y0; y < area.y1; ++y)
        for (int x = area.x0; x < area.x1; ++x) {
            fewest = std::min(fewest, frame.counts[frame.index(x, y)]);
            most = std::max(most, frame.counts[frame.index(x, y)]);
        }
    return joined({std::to_string(fewest), " to ", std::to_string(most)});
}

std::string_view end_text(SamplesMade::End end) {
    switch (end) {
    case SamplesMade::End::AllSamples:
        break;
    case SamplesMade::End::TimeLimit:
        return "stopped by the time limit";
    case SamplesMade::End::Noise:
        return "stopped as its noise is low enough";
    case SamplesMade::End::Interrupt:
        return "interrupted";
    }
    return "";
}

// An estimate is no better than that.
std::string two_digits(double number) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::general, 2).ptr;
    return std::string(text, end);
}

// What goes into a file besides its pixels. The rendered frame may be larger than the file's.
std::string comment_of(const RenderRequest &request, const SampleRange &asked, const SamplesMade &made,
                       const FrameBuffer &rendered, const FrameBuffer &frame) {
    const int count = made.samples.count();
    std::string comment =
        joined({"vantorPM ", VANTOR_VERSION, "; ", std::to_string(request.width), " x ", std::to_string(request.height),
                " pixels; ", std::to_string(count), count == 1 ? " sample a pixel" : " samples a pixel"});
    if (!rendered.counts.empty())
        comment += joined({" on average, from ", counts_text(rendered, frame.window())});
    if (!asked.is_whole())
        comment += joined({", from number ", std::to_string(asked.first), " of ", std::to_string(asked.in_all)});
    if (made.relative_error)
        comment += "; relative error about " + two_digits(*made.relative_error);
    if (const std::string_view why = end_text(made.end); !why.empty() && frame.is_whole())
        comment += joined({"; ", why, ", ", std::to_string(asked.count()), " were asked for"});
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

// A frame of more than the window: of a margin, by which the denoiser makes the window's pixels, or of the whole
// picture. Tiles go to the window's own frame as they are finished, which counts their pixels and shows them.
class WideFrame {
  public:
    WideFrame(const std::vector<FileImager> &imagers, const PixelArea &area, FrameBuffer &of_window)
        : wide(of_window.width(), of_window.height(), area), window(of_window) {
        add_aovs(wide, imagers);
        wide.on_finished = [this](const PixelArea &tile) { pass_on(tile); };
    }
    WideFrame(const WideFrame &) = delete;
    WideFrame &operator=(const WideFrame &) = delete;

    FrameBuffer &frame() { return wide; }

    // After rendering: the window gets its pixels.
    void finish() {
        window.finished = finished;
        if (!wide.is_whole())
            return;
        window.for_each([&](Aov aov, Picture &picture) {
            if (const std::optional<PartSums> &part = wide.of(aov).part)
                picture.part = PartSums{part->samples, part->reduction, std::vector<SampleSums>(picture.pixels.size())};
            picture.copy(wide.of(aov), window.window());
        });
        window.finished = window.pixels();
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

// The pixels of the window, from a frame with its margin; nothing if the pass is interrupted, or has too few samples.
std::optional<FrameBuffer> denoised_window(const FrameBuffer &rendered, const SampleRange &made,
                                           const PixelArea &window, const Interrupt &interrupt, const Report &report) {
    if (!rendered.is_whole())
        return {};
    if (!can_be_denoised(made)) {
        report.note(
            "render: \"denoise\" takes at least 2 samples a pixel, or 3 in the last part of a picture; the picture "
            "is written as it is");
        return {};
    }
    try {
        return denoised(rendered, made, window, interrupt);
    } catch (const Interrupted &) {
        report.note("render: interrupted; the picture is not denoised");
        return {};
    }
}

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
    const Settings settings = registry.settings();
    const Deadline deadline(settings.time_limit);
    const CallReport call(report, "render");
    if (indirect && settings.max_bounces < Settings().max_bounces) {
        report.note("render: \"max_depth\" is given, which the result of radiosity() cannot keep; paths are followed");
        indirect = nullptr;
    }

    registry.report_open_blocks(call);
    const PixelArea window = window_of(request, call);
    if (!registry.camera())
        call.diagnostic("there is no camera (newCamera makes one); nothing is rendered");
    const std::optional<SampleRange> samples = samples_of(request, settings, call);
    const std::vector<FileImager> imagers = writable_imagers(registry, window, call);
    const Filter filter = imagers.empty() ? Filter() : common_filter(imagers, call);
    const bool denoises = std::ranges::any_of(imagers, &FileImager::is_denoised);
    const bool by_noise = samples && check_noise_settings(settings, *samples, call);
    const RoundLimits limits{deadline, by_noise ? settings.noise : 0};
    const bool is_adaptive = by_noise && settings.is_adaptive && request.samples > first_adaptive_samples;
    const bool needs_whole = is_adaptive || limits.noise > 0;
    const bool fits = !needs_whole || check_whole_picture(request, call);
    if (report.refuses_pictures()) {
        report.note(joined({"render: no picture is written: ", std::to_string(report.diagnostics()),
                            " diagnostics so far, and VANTOR_DIAGNOSTICS is strict"}));
        return;
    }
    if (window.is_empty() || !samples || !fits || !registry.camera() || imagers.empty())
        return;
    registry.report_unused(std::ranges::any_of(imagers, [](const FileImager &imager) {
        return shows_light(imager.aov) || std::ranges::any_of(imager.layers, shows_light);
    }));

    for (const FileImager &imager : imagers)
        if (!samples->is_whole() && !imager.layers.empty())
            report.note(joined({"render: the layers of ", in_quotes(imager.path),
                                " are of its samples alone, without the sums that parts are put together by"}));

    FrameBuffer frame(request.width, request.height, window);
    add_aovs(frame, imagers);
    const PixelArea whole{0, 0, request.width, request.height};
    const PixelArea needed = denoises ? with_denoiser_margin(window, whole.width(), whole.height()) : window;
    const PixelArea &area = needs_whole ? whole : needed;
    std::optional<WideFrame> wide;
    if (area != window)
        wide.emplace(imagers, area, frame);
    FrameBuffer &rendered = wide ? wide->frame() : frame;
    if (denoises)
        rendered.add_guides();
    if (tile_handler())
        frame.on_finished = [&](const PixelArea &tile) { show_tile(imagers, frame, tile); };
    SamplesMade made{.samples = *samples};
    try {
        const World &world = worlds.current(registry, interrupt);
        const View view = view_of(world, registry);
        const IrradianceLookup lookup{indirect, view.settings.gathers ? 1 : 0};
        const auto render_blocks = [&](const SamplesOfBlock &of_block, Progress &progress, FrameBuffer &into) {
            render_tiles(world, view, lookup, filter, of_block, interrupt, progress, into);
        };
        const auto render_samples = [&](const SampleRange &range, FrameBuffer &into) {
            Progress progress("render", into.pixels() * range.count());
            render_blocks([&](const PixelArea &) { return range; }, progress, into);
        };
        if (is_adaptive) {
            Progress progress("render", rendered.pixels() * samples->count());
            const auto render_some = [&](const SamplesOfBlock &of_block, FrameBuffer &into) {
                render_blocks(of_block, progress, into);
            };
            made = render_adaptively(limits, samples->count(), needed, interrupt, render_some, rendered);
        } else if (limits.noise > 0 || settings.time_limit > 0) {
            if (limits.noise > 0)
                rendered.add_halves();
            made = render_in_rounds(limits, *samples, interrupt, render_samples, rendered);
        } else {
            if (!samples->is_whole())
                rendered.keep_sums(*samples);
            render_samples(*samples, rendered);
        }
    } catch (const Interrupted &) {
        // Of a world nothing can be shown before it is whole: no pixel is finished.
    }
    if (wide)
        wide->finish();
    std::optional<FrameBuffer> smooth;
    if (denoises)
        smooth = denoised_window(rendered, made.samples, window, interrupt, report);
    if (frame.finished == 0) {
        report.note("render: interrupted; no picture is written");
        return;
    }
    if (!frame.is_whole())
        frame.forget_sums();
    if (smooth && tile_handler())
        show_denoised(imagers, *smooth);
    write_files(imagers, frame, smooth, comment_of(request, *samples, made, rendered, frame), call, report);
}

} // namespace vantor
