// Ranges: the numbers that the tables of the vocabulary allow; and how their defaults are written.
#pragma once

#include "libvantor/parameters/vocabulary.h"

namespace vantor::tables {

inline constexpr Range any{};
inline constexpr Range not_negative{.low = 0.0, .text = "0 or more"};
// Far beyond any scene, and well within what floats can square twice.
inline constexpr Range coordinate{.low = -1e9, .high = 1e9, .text = "-1e9 to 1e9"};
inline constexpr Range direction{
    .low = -1e9, .high = 1e9, .excludes_zero_vector = true, .text = "-1e9 to 1e9, not all 0"};
inline constexpr Range size{.low = 1e-9, .high = 1e9, .text = "1e-9 to 1e9"};
inline constexpr Range aperture{.low = 0.0, .high = 1e9, .text = "0 to 1e9"};
inline constexpr Range half_turn{.low = 0.0, .high = 180.0, .text = "0 to 180"};
inline constexpr Range cone{.low = 0.01, .high = 180.0, .text = "0.01 to 180"};
inline constexpr Range turbidity{.low = 2.0, .high = 10.0, .text = "2 to 10"};
inline constexpr Range not_negative_length{.low = 0.0, .high = 1e9, .text = "0 to 1e9"};
inline constexpr Range off_or_on{.low = 0.0, .high = 1.0, .text = "0 or 1"};
inline constexpr Range fraction{.low = 0.0, .high = 1.0, .text = "0 to 1"};
inline constexpr Range octave_count{.low = 1.0, .high = 16.0, .text = "1 to 16"};
inline constexpr Range lacunarity{.low = 1.0, .high = 10.0, .text = "1 to 10"};
inline constexpr Range metal_index{.low = 0.0, .high = 100.0, .text = "0 to 100"};
inline constexpr Range index_ratio{.low = 0.1, .high = 10.0, .text = "0.1 to 10"};
inline constexpr Range coat_index{.low = 1.1, .high = 3.0, .text = "1.1 to 3"};
inline constexpr Range field_of_view{.low = 1e-3, .high = 179.0, .text = "0.001 to 179"};
inline constexpr Range stops{.low = -100.0, .high = 100.0, .text = "-100 to 100"};
inline constexpr Range spline_step{.low = 1.0, .high = 4.0, .text = "1 to 4"};
inline constexpr Range subdivision_levels{.low = 1.0, .high = 8.0, .text = "1 to 8"};
inline constexpr Range column_count{.low = 1.0, .high = 1e9, .text = "1 or more"};
inline constexpr Range division_count{.low = 1.0, .high = 256.0, .text = "1 to 256"};

inline constexpr std::array<double, 3> none{};

/// A default: of a number, or of a vector or colour.
constexpr std::array<double, 3> value(double x, double y = 0, double z = 0) { return {x, y, z}; }

} // namespace vantor::tables
