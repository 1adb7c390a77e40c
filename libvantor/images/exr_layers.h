// Layers in OpenEXR files: what their channels are called.
#pragma once

#include "libvantor/base/aov.h"

#include <algorithm>
#include <initializer_list>

namespace vantor::exr_layers {

inline constexpr std::initializer_list<const char *> color_channels = {"R", "G", "B"};
inline constexpr std::initializer_list<const char *> vector_channels = {"X", "Y", "Z"};
inline constexpr std::initializer_list<const char *> depth_channels = {"Z"};
inline constexpr std::initializer_list<const char *> alpha_channels = {"A"};
inline constexpr std::initializer_list<const char *> id_channels = {"id"};

/// Of a layer that shows an AOV, in the order of the components; of one letter if those are the same. These are the
/// names that OpenEXR keeps for colours, vectors, depth and ids ("Reading and Writing OpenEXR Image Files"). None for
/// what is no AOV.
constexpr std::initializer_list<const char *> channels_of(std::string_view layer) {
    if (layer == "color" || layer == "albedo" || layer == "variance")
        return color_channels;
    if (layer == "normal" || layer == "position")
        return vector_channels;
    if (layer == "depth" || layer == "depth_z")
        return depth_channels;
    if (layer == "alpha")
        return alpha_channels;
    if (layer == "object_id")
        return id_channels;
    return {};
}

constexpr bool has_channels(std::string_view layer) { return channels_of(layer).size() > 0; }
static_assert(std::ranges::all_of(aov_names, has_channels), "every AOV is a layer, whose channels have names");

/// Whether its values have to stay floats: those of halves are whole numbers only up to 2048.
inline bool needs_floats(std::string_view layer) { return layer == "object_id"; }

} // namespace vantor::exr_layers
