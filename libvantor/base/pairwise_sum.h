// Pairwise sum: additions in an order that does not depend on who makes which of them.
#pragma once

#include <utility>
#include <vector>

namespace vantor {

/// Adds groups up as the leaves of a binary tree, from left to right: two groups, two of these, and so on; at the end,
/// what has no sibling goes up alone. A subtree may be added in one step by whoever has its sum already; the result is
/// the same, bit by bit. (Floating-point addition is not associative, so any other order would round differently.)
///
/// Sums need add(const Sums &later).
template <class Sums> class PairwiseSum {
  public:
    /// The next groups: one, or a subtree with all of its groups; only the last of all may be a part of one.
    void add(Sums next, int groups = 1) {
        while (!waiting.empty() && waiting.back().groups == groups) {
            waiting.back().sums.add(next);
            next = std::move(waiting.back().sums);
            waiting.pop_back();
            groups *= 2;
        }
        waiting.push_back({std::move(next), groups});
    }

    /// Of all groups. At least one has been added; afterwards none has.
    Sums take() {
        while (waiting.size() > 1) {
            waiting[waiting.size() - 2].sums.add(waiting.back().sums);
            waiting.pop_back();
        }
        Sums result = std::move(waiting.back().sums);
        waiting.clear();
        return result;
    }

  private:
    struct Subtree {
        Sums sums;
        int groups;
    };
    std::vector<Subtree> waiting; // for their siblings; each smaller than the one before
};

} // namespace vantor
