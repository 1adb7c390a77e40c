// Imager: where a picture goes, what it shows, and how it is made.
#pragma once

#include "libvantor/base/aov.h"
#include "libvantor/images/files.h"
#include "libvantor/parameters/type_maker.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vantor {

/// How samples are spread around the middle of a pixel.
struct Filter {
    enum class Kind { Tent, Box, Gaussian, BlackmanHarris };

    Kind kind = Kind::Tent;
    float width = 2; ///< From edge to edge, in pixels.

    bool operator==(const Filter &) const = default;
};

struct FileImager {
    std::string path; ///< Its ending is that of a known format.
    Aov aov;
    float scale;     ///< What the colour is multiplied by.
    Display display; ///< How 8 bits are made of the colour.
    Filter filter;
    bool asks_for_filter;      ///< Whether the script says anything about it.
    bool has_alpha;            ///< Without a background: where the file can tell how much is covered, it does.
    bool is_denoised;          ///< Colour alone.
    int bits = 0;              ///< Of a channel; 0 for what is usual in the format.
    std::vector<Aov> layers{}; ///< What an .exr file shows besides.
};

/// How a pass is made.
struct Settings {
    std::uint32_t seed = 0;                  ///< Other numbers for every sample.
    static constexpr int any_bounces = 1000; ///< No limit.
    int max_bounces = any_bounces;           ///< How often the direction of a path changes at most.
    float clamp = 0;          ///< The radiance that one sample of indirect light has at most; 0 is no limit.
    bool gathers = false;     ///< After radiosity: the first diffuse surface scatters light itself.
    int first_sample = 0;     ///< Of each pixel, which of a larger picture's samples is the pass's first.
    int samples_in_all = 0;   ///< How many a pixel of that picture has; 0: no more than this pass makes.
    double time_limit = 0;    ///< Seconds; 0 is no limit.
    double noise = 0;         ///< The relative error below which the picture is good enough; 0 is never.
    bool is_adaptive = false; ///< Samples go where the noise is.

    /// Whether how many samples a pixel gets is told from the whole picture.
    bool looks_at_noise() const { return noise > 0 || is_adaptive; }
};

using Imager = std::variant<FileImager, Settings>;

using ImagerMaker = TypeMaker<std::optional<Imager>(const Parameters &, const CallReport &)>;

/// One for each type of imager.
std::span<const ImagerMaker> imager_makers();

/// Nothing, after a diagnostic, if a file's path names no format.
std::optional<Imager> make_imager(const Type &type, const Parameters &parameters, const CallReport &report);

} // namespace vantor
