// Sample range: which samples of each pixel a pass makes.
#pragma once

#include <bit>

namespace vantor {

/// Samples are traced together, and added up first, in groups of so many.
inline constexpr int samples_per_group = 16;

/// The samples first <= i < end of each pixel of a picture that has in_all of them.
struct SampleRange {
    int first = 0;
    int end = 1;
    int in_all = 1;

    int count() const { return end - first; }
    int first_group() const { return first / samples_per_group; }
    int groups() const { return (end + samples_per_group - 1) / samples_per_group - first_group(); }

    bool is_whole() const { return first == 0 && end == in_all; }

    /// Whether the range is a subtree of a PairwiseSum over all groups, so that what it sums is a term of the whole
    /// picture's sum: 1, 2, 4, 8 ... groups that begin at a multiple of as many, or what is left of these at the end.
    bool is_subtree() const {
        if (first < 0 || first >= end || end > in_all || first % samples_per_group != 0)
            return false;
        const auto size = static_cast<int>(std::bit_ceil(static_cast<unsigned>(groups())));
        const bool is_full = groups() == size && end % samples_per_group == 0;
        return first_group() % size == 0 && (is_full || end == in_all);
    }
};

} // namespace vantor
