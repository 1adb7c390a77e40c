// Parts in OpenEXR files: what the sums of a part are called there.
#pragma once

#include "libvantor/images/sample_sums.h"

#include <bit>
#include <cstdint>

namespace vantor::exr_part {

// Attributes: the samples first <= i < end of in_all, and the Reduction's name.
inline constexpr char first_sample[] = "vantorFirstSample";
inline constexpr char end_sample[] = "vantorEndSample";
inline constexpr char samples_in_all[] = "vantorSamplesInAll";
inline constexpr char reduction[] = "vantorReduction";

/// The words of SampleSums, in their order in memory: the format has no doubles.
inline constexpr const char *channels[] = {
    "sum.R.low",     "sum.R.high",     "sum.G.low",      "sum.G.high",    "sum.B.low",
    "sum.B.high",    "squares.R.low",  "squares.R.high", "squares.G.low", "squares.G.high",
    "squares.B.low", "squares.B.high", "hits.low",       "hits.high",
};
inline constexpr std::size_t word_size = sizeof(std::uint32_t);
static_assert(std::endian::native == std::endian::little && std::size(channels) * word_size == sizeof(SampleSums));

} // namespace vantor::exr_part
