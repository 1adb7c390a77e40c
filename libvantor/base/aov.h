// AOV: what a picture can show of each pixel (arbitrary output variables), and what scripts call it.
#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

namespace vantor {

/// All but the object and the variance are filtered like the colour. What each is made of stands in film/aov_table.cpp.
enum class Aov {
    Color,      ///< The radiance that arrives.
    Albedo,     ///< The colour of the surface.
    Normal,     ///< The shading normal in the world, on the side that is seen.
    Depth,      ///< How far the surface is from where the ray starts.
    Position,   ///< Of the surface in the world.
    ObjectId,   ///< Of the first sample.
    Variance,   ///< Of the colour: how far off its mean over the samples is likely to be, squared.
    Alpha,      ///< How much of the pixel a surface covers, 0 to 1.
    DepthZ,     ///< How far the surface is along the camera's axis.
    Foreground, ///< Last, as it has no name. The radiance that arrives from there: what is left of the colour without a
                ///< background.
};

/// In the order of Aov. The first is the default. The foreground is what imagers without a background show as colour.
inline constexpr std::string_view aov_names[] = {"color",     "albedo",   "normal", "depth",  "position",
                                                 "object_id", "variance", "alpha",  "depth_z"};
inline constexpr std::size_t aov_count = std::size(aov_names) + 1;

constexpr std::size_t index_of(Aov aov) { return static_cast<std::size_t>(aov); }
static_assert(index_of(Aov::Foreground) == std::size(aov_names), "every other AOV has a name, and stands before it");

/// The default for a name that is none of the above, which the vocabulary does not let through.
constexpr Aov aov_named(std::string_view name) {
    for (std::size_t i = 0; i < std::size(aov_names); ++i)
        if (aov_names[i] == name)
            return static_cast<Aov>(i);
    return Aov::Color;
}

/// Whether it is made of light: the others are the same in the dark.
constexpr bool shows_light(Aov aov) { return aov == Aov::Color || aov == Aov::Variance || aov == Aov::Foreground; }

} // namespace vantor
