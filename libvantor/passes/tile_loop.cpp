// Tile loop: the pixels of a frame, on all cores.
#include "libvantor/passes/tile_loop.h"

#include "libvantor/base/pairwise_sum.h"
#include "libvantor/film/film.h"
#include "libvantor/film/filter.h"
#include "libvantor/integrators/path_integrator.h"

#include <atomic>

namespace vantor {

namespace {

// The dimensions of a sample: the film and the lens take the first, its path the rest.
constexpr std::uint32_t film_dimension = 0;
constexpr std::uint32_t lens_dimension = 1;
constexpr std::uint32_t path_dimension = 2;

// The samples of a wave are a group of the whole picture's, whichever of them a pass makes: so the same paths are
// traced together in every pass.
constexpr std::size_t most_paths = block_pixels * samples_per_group;

// The pixels of a block, row after row.
struct BlockFilm {
    std::array<PixelFilm, block_pixels> pixels;
    std::vector<GuideSums> guides; // likewise, if anybody asks
    std::vector<HalfSums> halves;

    void add(const BlockFilm &later) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i].add(later.pixels[i]);
        for (std::size_t i = 0; i < guides.size(); ++i)
            guides[i].add(later.guides[i]);
        for (std::size_t i = 0; i < halves.size(); ++i)
            halves[i].add(later.halves[i]);
    }
};

// Some samples of every pixel of a block, visited pixel by pixel.
struct BlockSamples {
    PixelArea block;
    SampleRange range;

    int count() const { return range.count(); }
    template <class Visit> void for_each(Visit visit) const {
        for (int y = block.y0; y < block.y1; ++y)
            for (int x = block.x0; x < block.x1; ++x)
                for (int sample = range.first; sample < range.end; ++sample)
                    visit(x, y, sample);
    }
    std::size_t pixel_of(std::size_t sample) const { return sample / static_cast<std::size_t>(count()); }
    int sample_of(std::size_t sample) const {
        return range.first + static_cast<int>(sample % static_cast<std::size_t>(count()));
    }
};

// Whether an AOV needs to know what paths see first.
bool needs_first_hits(const FrameBuffer &frame) {
    return std::ranges::any_of(aov_table(), [&](const AovRow &row) { return row.value && frame.has(row.aov); });
}

// What all blocks of a pass have in common.
class BlockRenderer {
  public:
    BlockRenderer(const World &of, const View &from, const IrradianceLookup &indirect, const Filter &of_samples,
                  const Interrupt &by, FrameBuffer &into)
        : world(of), view(from), integrator(of, from.settings, path_dimension, by, indirect), filter(of_samples),
          interrupt(by), frame(into), has_aovs(needs_first_hits(into)), has_guides(!into.guides.empty()),
          has_halves(!into.halves.empty()) {}

    // Returns how many pixels of the frame are finished: none if it was interrupted.
    int render(const PixelArea &block, const SampleRange &samples) const;

  private:
    // Paths as they leave the camera, and what they will see first.
    struct CameraPaths {
        std::vector<Path> paths;
        std::vector<AovSample> aovs; // of each path, if anybody asks
        std::vector<GuideSample> guides;

        CameraPaths(bool with_aovs, bool with_guides) {
            paths.reserve(most_paths);
            aovs.reserve(with_aovs ? most_paths : 0); // paths point to them: they must not move
            guides.reserve(with_guides ? most_paths : 0);
        }
    };

    void start(const BlockSamples &of_block, CameraPaths &result) const;
    BlockFilm exposed(const BlockSamples &of_block, const CameraPaths &wave) const;
    MediumStack media_around(const Ray &ray) const;
    int finish(const PixelArea &block, const BlockFilm &film) const;
    void add_to_frame(std::size_t to, const BlockFilm &film, std::size_t pixel) const;

    const World &world;
    const View &view;
    const PathIntegrator integrator;
    const FilterSampler filter;
    const Interrupt &interrupt;
    FrameBuffer &frame;
    const bool has_aovs;
    const bool has_guides;
    const bool has_halves;
};

MediumStack BlockRenderer::media_around(const Ray &ray) const {
    const bool has_own = world.has_media && view.camera.has_many_origins();
    return has_own ? media_at(ray.origin, world.tracer, world.placements) : view.camera_media;
}

void BlockRenderer::start(const BlockSamples &of_block, CameraPaths &result) const {
    std::vector<Sampler> samplers;
    samplers.reserve(most_paths);
    of_block.for_each([&](int x, int y, int sample) {
        samplers.emplace_back(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                              static_cast<std::uint32_t>(sample), static_cast<std::uint32_t>(of_block.range.in_all),
                              view.settings.seed);
    });
    std::vector<Point2f> on_film(samplers.size());
    get_2d_of(samplers, film_dimension, on_film);
    std::vector<Point2f> on_lens(samplers.size());
    const Camera &camera = view.camera;
    const Vec3 axis = camera.axis();
    if (camera.has_lens())
        get_2d_of(samplers, lens_dimension, on_lens);

    result.paths.clear();
    result.aovs.clear();
    result.guides.clear();
    std::size_t i = 0;
    of_block.for_each([&](int x, int y, int) {
        const Point2f position = filter.position(x, y, on_film[i]);
        const Ray ray = camera.ray(position.u, position.v, frame.width(), frame.height(), on_lens[i]);
        AovSample *seen = has_aovs ? &result.aovs.emplace_back(AovSample{.start = ray.origin, .axis = axis}) : nullptr;
        GuideSample *guides = has_guides ? &result.guides.emplace_back(GuideSample{.from = ray.origin}) : nullptr;
        result.paths.emplace_back(ray, samplers[i], media_around(ray), seen, guides);
        ++i;
    });
}

// What a wave that has been traced adds to the pixels.
BlockFilm BlockRenderer::exposed(const BlockSamples &of_block, const CameraPaths &wave) const {
    BlockFilm film;
    for (std::size_t i = 0; i < wave.paths.size(); ++i) {
        PixelFilm &pixel = film.pixels[of_block.pixel_of(i)];
        if (has_aovs)
            pixel.add(wave.paths[i].radiance, wave.aovs[i]);
        else
            pixel.add(wave.paths[i].radiance);
    }
    if (has_guides) {
        film.guides.resize(block_pixels);
        for (std::size_t i = 0; i < wave.paths.size(); ++i)
            film.guides[of_block.pixel_of(i)].add(wave.paths[i].radiance, wave.guides[i],
                                                  run_of(of_block.sample_of(i), of_block.range.in_all));
    }
    if (has_halves) {
        film.halves.resize(block_pixels);
        const auto per_pixel = static_cast<std::size_t>(of_block.count());
        for (std::size_t first = 0; first < wave.paths.size(); first += per_pixel)
            for (std::size_t half = 0; half + samples_per_half <= per_pixel; half += samples_per_half) {
                double sum = 0;
                for (std::size_t i = 0; i < samples_per_half; ++i)
                    if (const Color radiance = wave.paths[first + half + i].radiance; is_finite(radiance))
                        sum += luminance(radiance);
                film.halves[first / per_pixel].add(sum / samples_per_half);
            }
    }
    return film;
}

int BlockRenderer::render(const PixelArea &block, const SampleRange &samples) const {
    PairwiseSum<BlockFilm> film;
    CameraPaths wave(has_aovs, has_guides);
    for (int first = samples.first; first < samples.end; first += samples_per_group) {
        if (interrupt.requested())
            return 0;
        const BlockSamples of_block{block, {first, std::min(first + samples_per_group, samples.end), samples.in_all}};
        start(of_block, wave);
        if (!integrator.trace(wave.paths))
            return 0;
        film.add(exposed(of_block, wave));
    }
    return finish(block, film.take());
}

int BlockRenderer::finish(const PixelArea &block, const BlockFilm &film) const {
    int finished = 0;
    std::size_t pixel = 0;
    for (int y = block.y0; y < block.y1; ++y)
        for (int x = block.x0; x < block.x1; ++x, ++pixel)
            if (frame.window().contains(x, y)) {
                ++finished;
                add_to_frame(frame.index(x, y), film, pixel);
            }
    return finished;
}

// A pixel of the frame gets that of the block.
void BlockRenderer::add_to_frame(std::size_t to, const BlockFilm &film, std::size_t pixel) const {
    const int samples = film.pixels[pixel].samples();
    const int before = frame.counts.empty() ? 0 : frame.counts[to];
    if (!frame.counts.empty())
        frame.counts[to] += samples;
    if (has_guides)
        frame.guides[to].add(film.guides[pixel]);
    if (has_halves)
        frame.halves[to].add(film.halves[pixel]);
    frame.for_each([&](Aov aov, Picture &picture) {
        SampleSums sums = film.pixels[pixel].sums(aov);
        const Reduction reduction = row_of(aov).reduction;
        if (before > 0) {
            SampleSums all = picture.part->pixels[to];
            all.add(sums, reduction);
            sums = all;
        }
        picture.pixels[to] = sums.value(reduction, before + samples);
        if (picture.part)
            picture.part->pixels[to] = sums;
    });
}

} // namespace

void render_tiles(const World &world, const View &view, const IrradianceLookup &indirect, const Filter &filter,
                  const SamplesOfBlock &samples, const Interrupt &interrupt, Progress &progress, FrameBuffer &frame) {
    const BlockRenderer renderer(world, view, indirect, filter, interrupt, frame);
    std::atomic<long> finished = 0;
    const PixelArea &window = frame.window();
    const auto render_tile = [&](const PixelArea &tile) {
        long made = 0;
        for (int y = tile.y0; y < tile.y1; y += block_side)
            for (int x = tile.x0; x < tile.x1; x += block_side) {
                const PixelArea block{x, y, std::min(x + block_side, tile.x1), std::min(y + block_side, tile.y1)};
                const SampleRange range = samples(block);
                if (range.count() <= 0)
                    continue;
                const long pixels = renderer.render(block, range);
                finished += pixels;
                made += pixels * range.count();
            }
        if (made == 0)
            return;
        const PixelArea shown{std::max(tile.x0, window.x0), std::max(tile.y0, window.y0), std::min(tile.x1, window.x1),
                              std::min(tile.y1, window.y1)};
        if (frame.on_finished && !interrupt.requested())
            frame.on_finished(shown);
        progress.done(made);
    };
    for_each_tile(whole_blocks(frame.window(), frame.width(), frame.height()), interrupt, render_tile);
    frame.finished = std::max(frame.finished, finished.load());
}

} // namespace vantor
