// Sample shares: which blocks of a picture get how many samples.
#pragma once

#include "libvantor/passes/blocks.h"

#include <vector>

namespace vantor {

/// How many groups of samples the pixels of each block have after a round: not fewer than before, no more than the
/// limit, and the mean over all pixels is what it is to be, or just below.
///
/// A block's share goes by the noise of the blocks around it, not by its own: samples that decide how many others they
/// are averaged with would shift the mean (a bright one by chance would be followed by more samples than a dark one).
std::vector<int> shared_out(const BlockGrid &grid, const std::vector<double> &variances,
                            const std::vector<int> &groups_before, double mean_groups, int most_groups);

} // namespace vantor
