// Frame buffer: what a pass has made, before it goes to files.
#pragma once

#include "libvantor/film/aov_table.h"
#include "libvantor/film/guides.h"
#include "libvantor/film/half_groups.h"
#include "libvantor/images/picture.h"

#include <array>
#include <functional>
#include <optional>

namespace vantor {

/// The pictures of a pass, one for each AOV that somebody asked for, all of the same window. A stage between rendering
/// and writing, such as a denoiser, takes a frame and gives one back; imagers write whatever it then holds. What such a
/// stage needs is added before rendering, whether or not an imager shows it.
class FrameBuffer {
  public:
    /// Without any AOV yet. The window, in pixels of the whole picture, is not empty.
    FrameBuffer(int width, int height, const PixelArea &window)
        : full_width(width), full_height(height), area(window) {}

    int width() const { return full_width; } ///< Of the whole picture.
    int height() const { return full_height; }
    const PixelArea &window() const { return area; }
    /// Of x and y of the whole picture, inside the window.
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - area.y0) * static_cast<std::size_t>(area.width()) +
               static_cast<std::size_t>(x - area.x0);
    }
    long pixels() const { return static_cast<long>(area.width()) * area.height(); }

    /// Makes room for an AOV: black. Nothing happens if it is there.
    void add(Aov aov) {
        if (std::optional<Picture> &picture = pictures[index_of(aov)]; !picture)
            picture.emplace(full_width, full_height, area);
    }
    /// Of all AOVs that are there, also keeps what their pixels are made of, of these samples.
    void keep_sums(const SampleRange &samples) {
        for_each([&](Aov aov, Picture &picture) {
            picture.part = PartSums{samples, row_of(aov).reduction, std::vector<SampleSums>(picture.pixels.size())};
        });
    }

    void forget_sums() {
        for_each([](Aov, Picture &picture) { picture.part.reset(); });
    }

    /// Has the pass keep what the denoiser goes by.
    void add_guides() { guides.resize(static_cast<std::size_t>(pixels())); }
    std::vector<GuideSums> guides; ///< Row after row like the pixels; empty unless they were added.

    /// Has the pass keep what errors are estimated from.
    void add_halves() { halves.resize(static_cast<std::size_t>(pixels())); }
    std::vector<HalfSums> halves; ///< Likewise.

    /// Has the pass count the samples of each pixel, and add to those that are there. The sums have to be kept.
    void count_samples() { counts.resize(static_cast<std::size_t>(pixels())); }
    std::vector<int> counts; ///< Likewise; where they are empty all pixels have as many.
    int count_of(std::size_t pixel, const SampleRange &samples) const {
        return counts.empty() ? samples.count() : counts[pixel];
    }

    bool has(Aov aov) const { return pictures[index_of(aov)].has_value(); }

    /// Has to be there.
    Picture &of(Aov aov) { return *pictures[index_of(aov)]; }
    const Picture &of(Aov aov) const { return *pictures[index_of(aov)]; }

    /// Calls visit(aov, picture) for all that are there, in the order of Aov.
    template <class Visit> void for_each(Visit visit) {
        for (std::size_t i = 0; i < aov_count; ++i)
            if (pictures[i])
                visit(static_cast<Aov>(i), *pictures[i]);
    }

    /// Called with each part of the window whose pixels have their values, from any thread; may be empty.
    std::function<void(const PixelArea &tile)> on_finished;

    long finished = 0; ///< How many of the window's pixels have their values. The others are black.
    bool is_whole() const { return finished == pixels(); }

  private:
    int full_width;
    int full_height;
    PixelArea area;
    std::array<std::optional<Picture>, aov_count> pictures;
};

} // namespace vantor
