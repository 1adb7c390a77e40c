// Layers in OpenEXR files: what their channels are called.
#pragma once

#include <initializer_list>
#include <string_view>

namespace vantor::exr_layers {

/// Of a layer that shows an AOV, in the order of the components; of one letter if those are the same. These are the
/// names that OpenEXR keeps for colours, vectors, depth and ids ("Reading and Writing OpenEXR Image Files").
inline std::initializer_list<const char *> channels_of(std::string_view layer) {
    static constexpr std::initializer_list<const char *> color = {"R", "G", "B"};
    static constexpr std::initializer_list<const char *> vector = {"X", "Y", "Z"};
    static constexpr std::initializer_list<const char *> depth = {"Z"};
    static constexpr std::initializer_list<const char *> alpha = {"A"};
    static constexpr std::initializer_list<const char *> id = {"id"};
    if (layer == "normal" || layer == "position")
        return vector;
    if (layer == "depth" || layer == "depth_z")
        return depth;
    if (layer == "alpha")
        return alpha;
    return layer == "object_id" ? id : color;
}

/// Whether its values have to stay floats: those of halves are whole numbers only up to 2048.
inline bool needs_floats(std::string_view layer) { return layer == "object_id"; }

} // namespace vantor::exr_layers
