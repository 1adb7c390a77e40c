// Adaptive rounds: a pass whose further samples go where the noise is.
#include "libvantor/passes/adaptive_rounds.h"

#include "libvantor/passes/sample_shares.h"

namespace vantor {

namespace {

// Of the mean number of samples, by one round. The error is known better after each, but a window has to make all
// rounds but the last for the whole picture.
constexpr double growth = 4;

// No pixel gets more samples than so many times the mean; it is a factor of the sequence's length, too.
constexpr int most_times_the_mean = 16;

class AdaptiveRounds {
  public:
    AdaptiveRounds(const RoundLimits &by, int of_each, const PixelArea &area, const Interrupt &until,
                   const RenderBlocks &with, FrameBuffer &into)
        : limits(by), samples(of_each), needed(area), interrupt(until), render(with),
          frame(into), grid{into.width(), into.height()}, groups(grid.count(), 0) {
        frame.keep_sums({0, samples, samples});
        frame.add_halves();
        frame.count_samples();
    }

    SamplesMade run() {
        render_up_to(std::vector<int>(grid.count(), 1), first_adaptive_samples);
        while (!interrupt.requested()) {
            const ErrorEstimate error = estimated();
            if (limits.noise > 0)
                made.relative_error = error.relative_error;
            const int next = next_mean(error.relative_error);
            if (next == mean)
                break;
            std::vector<int> more =
                shared_out(grid, error.variances, groups, static_cast<double>(next) / samples_per_group, most_groups());
            // Then nothing is asked about the other blocks' errors.
            if (next == samples && !(limits.noise > 0))
                leave_out_what_is_not_needed(more);
            render_up_to(std::move(more), next);
        }
        if (interrupt.requested())
            made.end = SamplesMade::End::Interrupt;
        frame.forget_sums();
        made.samples = {0, mean, mean};
        return made;
    }

  private:
    int most_groups() const { return most_times_the_mean * ((samples + samples_per_group - 1) / samples_per_group); }

    void render_up_to(std::vector<int> next_groups, int next) {
        const double start = limits.deadline.seconds_gone();
        const int in_all = most_groups() * samples_per_group;
        render(
            [&](const PixelArea &block) {
                const std::size_t i = grid.index_of(block);
                return SampleRange{groups[i] * samples_per_group, next_groups[i] * samples_per_group, in_all};
            },
            frame);
        if (interrupt.requested() && mean > 0)
            return; // some blocks have their samples, which count
        seconds_per_sample = (limits.deadline.seconds_gone() - start) / (next - mean);
        groups = std::move(next_groups);
        mean = next;
    }

    ErrorEstimate estimated() const {
        return estimate_error(grid, frame.halves,
                              [&](const PixelArea &block) { return groups[grid.index_of(block)] * samples_per_group; });
    }

    // As many as there are, if there is to be no other round.
    int next_mean(double error) {
        if (mean == samples)
            return mean;
        double next = std::min(growth * mean, static_cast<double>(samples));
        if (limits.noise > 0) {
            const double ratio = error / limits.noise;
            if (ratio < 1) {
                made.end = SamplesMade::End::Noise;
                return mean;
            }
            // The error falls with the root of the samples; rounds of a few would cost more than they spare.
            next = std::min(next, std::max(1.1 * mean * ratio * ratio, 1.25 * mean));
        }
        const double in_time = mean + limits.deadline.seconds_left() / seconds_per_sample;
        if (in_time < mean + 1)
            made.end = SamplesMade::End::TimeLimit;
        return static_cast<int>(std::max<double>(mean, std::min(next, in_time)));
    }

    void leave_out_what_is_not_needed(std::vector<int> &more) const {
        const PixelArea blocks = whole_blocks(needed, grid.width, grid.height);
        grid.for_each([&](std::size_t i, const PixelArea &block) {
            if (!blocks.contains(block.x0, block.y0))
                more[i] = groups[i];
        });
    }

    const RoundLimits &limits;
    const int samples; // the mean to be reached
    const PixelArea needed;
    const Interrupt &interrupt;
    const RenderBlocks &render;
    FrameBuffer &frame;
    const BlockGrid grid;
    std::vector<int> groups; // of samples that each block has
    int mean = 0;            // number of samples
    double seconds_per_sample = 0;
    SamplesMade made;
};

} // namespace

SamplesMade render_adaptively(const RoundLimits &limits, int samples, const PixelArea &needed,
                              const Interrupt &interrupt, const RenderBlocks &render, FrameBuffer &frame) {
    return AdaptiveRounds(limits, samples, needed, interrupt, render, frame).run();
}

} // namespace vantor
