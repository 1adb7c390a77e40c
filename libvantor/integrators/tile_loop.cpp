// Tile loop: the pixels of a frame, on all cores.
#include "libvantor/integrators/tile_loop.h"

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

// Paths are traced in waves: some samples of all pixels of a block. The blocks are those of the whole picture, and a
// window renders every block that it touches in full. So the same paths are traced together in every window, and
// rounding that depends on a ray's neighbours in its packet makes no difference. For the same reason, the samples of a
// wave are a group of the whole picture's, whichever of them a pass makes.
constexpr int block_side = 4;
constexpr std::size_t block_pixels = std::size_t{block_side} * block_side;
constexpr std::size_t most_paths = block_pixels * samples_per_group;

// The pixels of a block, row after row.
struct BlockFilm {
    std::array<PixelFilm, block_pixels> pixels;
    std::vector<GuideSums> guides; // likewise, if anybody asks

    void add(const BlockFilm &later) {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i].add(later.pixels[i]);
        for (std::size_t i = 0; i < guides.size(); ++i)
            guides[i].add(later.guides[i]);
    }
};

PixelArea whole_blocks(const PixelArea &window, int width, int height) {
    const auto down = [](int x) { return x / block_side * block_side; };
    const auto up = [](int x) { return (x + block_side - 1) / block_side * block_side; };
    return {down(window.x0), down(window.y0), std::min(up(window.x1), width), std::min(up(window.y1), height)};
}

// Some samples of every pixel of a block, visited pixel by pixel.
struct BlockSamples {
    PixelArea block;
    int first;
    int end;

    template <class Visit> void for_each(Visit visit) const {
        for (int y = block.y0; y < block.y1; ++y)
            for (int x = block.x0; x < block.x1; ++x)
                for (int sample = first; sample < end; ++sample)
                    visit(x, y, sample);
    }
    std::size_t pixel_of(std::size_t sample) const { return sample / static_cast<std::size_t>(end - first); }
    int sample_of(std::size_t sample) const {
        return first + static_cast<int>(sample % static_cast<std::size_t>(end - first));
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
                  const SampleRange &of_each_pixel, const Interrupt &by, FrameBuffer &into)
        : world(of), view(from), integrator(of, from.settings, path_dimension, by, indirect), filter(of_samples),
          samples(of_each_pixel), interrupt(by), frame(into), has_aovs(needs_first_hits(into)),
          has_guides(!into.guides.empty()) {}

    // Returns how many pixels of the frame are finished: none if it was interrupted.
    int render(const PixelArea &block) const;

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
    MediumStack media_around(const Ray &ray) const;
    int finish(const PixelArea &block, const BlockFilm &film) const;

    const World &world;
    const View &view;
    const PathIntegrator integrator;
    const FilterSampler filter;
    const SampleRange samples;
    const Interrupt &interrupt;
    FrameBuffer &frame;
    const bool has_aovs;
    const bool has_guides;
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
                              static_cast<std::uint32_t>(sample), static_cast<std::uint32_t>(samples.in_all),
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

int BlockRenderer::render(const PixelArea &block) const {
    PairwiseSum<BlockFilm> film;
    CameraPaths wave(has_aovs, has_guides);
    for (int first = samples.first; first < samples.end; first += samples_per_group) {
        if (interrupt.requested())
            return 0;
        const BlockSamples of_block{block, first, std::min(first + samples_per_group, samples.end)};
        start(of_block, wave);
        if (!integrator.trace(wave.paths))
            return 0;
        BlockFilm group;
        for (std::size_t i = 0; i < wave.paths.size(); ++i) {
            PixelFilm &pixel = group.pixels[of_block.pixel_of(i)];
            if (has_aovs)
                pixel.add(wave.paths[i].radiance, wave.aovs[i]);
            else
                pixel.add(wave.paths[i].radiance);
        }
        if (has_guides) {
            group.guides.resize(block_pixels);
            for (std::size_t i = 0; i < wave.paths.size(); ++i)
                group.guides[of_block.pixel_of(i)].add(wave.paths[i].radiance, wave.guides[i],
                                                       run_of(of_block.sample_of(i), samples.in_all));
        }
        film.add(std::move(group));
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
                if (has_guides)
                    frame.guides[frame.index(x, y)] = film.guides[pixel];
                frame.for_each([&](Aov aov, Picture &picture) {
                    picture.at(x, y) = film.pixels[pixel].value(aov);
                    if (picture.part)
                        picture.part->pixels[picture.index(x, y)] = film.pixels[pixel].sums(aov);
                });
            }
    return finished;
}

} // namespace

void render_tiles(const World &world, const View &view, const IrradianceLookup &indirect, const Filter &filter,
                  const SampleRange &samples, const Interrupt &interrupt, FrameBuffer &frame) {
    const BlockRenderer renderer(world, view, indirect, filter, samples, interrupt, frame);
    std::atomic<long> finished = 0;
    const PixelArea &window = frame.window();
    const auto render_tile = [&](const PixelArea &tile) {
        for (int y = tile.y0; y < tile.y1; y += block_side)
            for (int x = tile.x0; x < tile.x1; x += block_side)
                finished +=
                    renderer.render({x, y, std::min(x + block_side, tile.x1), std::min(y + block_side, tile.y1)});
        const PixelArea shown{std::max(tile.x0, window.x0), std::max(tile.y0, window.y0), std::min(tile.x1, window.x1),
                              std::min(tile.y1, window.y1)};
        if (frame.on_finished && !interrupt.requested())
            frame.on_finished(shown);
    };
    for_each_tile(whole_blocks(frame.window(), frame.width(), frame.height()), interrupt, render_tile);
    frame.finished = finished;
}

} // namespace vantor
