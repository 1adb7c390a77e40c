// Reading PLY files, as scanners and point tools write them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

/// The mesh of a file. What the file does not have is empty; everything else has a row for each point.
struct PlyMesh {
    std::vector<std::array<float, 3>> points;
    std::vector<std::array<float, 3>> normals;
    std::vector<std::array<float, 2>> uvs;
    std::vector<std::array<float, 3>> colors; ///< Of whole numbers, 255 is 1.
    std::vector<std::array<std::int32_t, 3>> triangles;
};

/// Reads the bytes of a file: text or binary of either byte order. Polygons are cut into triangles around their first
/// corner. Throws what is wrong with the file as a std::runtime_error, also where it ends too early.
PlyMesh read_ply(std::string_view file);
