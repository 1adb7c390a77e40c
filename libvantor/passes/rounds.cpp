// Rounds: a pass that makes its samples a few at a time, so that it can stop in between.
#include "libvantor/passes/rounds.h"

#include "libvantor/base/pairwise_sum.h"
#include "libvantor/passes/error_estimate.h"

namespace vantor {

namespace {

// What all pictures of a frame are made of.
struct FrameSums {
    std::array<std::optional<PartSums>, aov_count> parts;
    std::vector<GuideSums> guides;

    explicit FrameSums(FrameBuffer &frame) {
        frame.for_each([&](Aov aov, Picture &picture) { parts[index_of(aov)] = std::move(picture.part); });
        guides = std::move(frame.guides);
    }
    void add(const FrameSums &later) {
        for (std::size_t i = 0; i < aov_count; ++i)
            if (parts[i])
                parts[i]->add(*later.parts[i]);
        for (std::size_t i = 0; i < guides.size(); ++i)
            guides[i].add(later.guides[i]);
    }
};

// A frame like another, for some samples of it.
FrameBuffer frame_like(FrameBuffer &frame, const SampleRange &samples) {
    FrameBuffer result(frame.width(), frame.height(), frame.window());
    frame.for_each([&](Aov aov, Picture &) { result.add(aov); });
    result.keep_sums(samples);
    if (!frame.guides.empty())
        result.add_guides();
    if (!frame.halves.empty())
        result.add_halves();
    return result;
}

// The largest subtree from a sample on that is no larger than what is made by then and that is likely to end in time;
// of no samples if none is.
SampleRange next_round(const SampleRange &all, int first, double most_samples) {
    for (int groups = std::max(1, (first - all.first) / samples_per_group); groups > 0; groups /= 2) {
        const int count = std::min(groups * samples_per_group, all.end - first);
        const SampleRange round{first, first + count, all.in_all};
        if (round.is_subtree() && count <= most_samples)
            return round;
    }
    return {first, first, all.in_all};
}

// The error of what is made, round by round.
class NoiseWatch {
  public:
    explicit NoiseWatch(const FrameBuffer &frame) : grid{frame.width(), frame.height()}, sums(frame.halves.size()) {}

    void add(const FrameBuffer &some) {
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i].add(some.halves[i]);
    }
    std::optional<double> relative_error(const SampleRange &made) const {
        if (sums.empty() || made.count() < least_estimated_samples)
            return {};
        return estimate_error(grid, sums, [&](const PixelArea &) { return made.count(); }).relative_error;
    }

  private:
    const BlockGrid grid;
    std::vector<HalfSums> sums; // of all pixels; none if nobody asks
};

} // namespace

SamplesMade render_in_rounds(const RoundLimits &limits, const SampleRange &samples, const Interrupt &interrupt,
                             const RenderSamples &render, FrameBuffer &frame) {
    PairwiseSum<FrameSums> sums;
    NoiseWatch noise(frame);
    const double preparation = limits.deadline.seconds_gone();
    SamplesMade result{.samples = {samples.first, samples.first, samples.in_all}};
    SampleRange &made = result.samples;
    SampleRange round = next_round(samples, samples.first, std::numeric_limits<double>::infinity());
    while (round.count() > 0) {
        const bool is_first = made.count() == 0;
        FrameBuffer some = frame_like(frame, round);
        if (is_first)
            some.on_finished = frame.on_finished;
        render(round, some);
        if (interrupt.requested())
            result.end = SamplesMade::End::Interrupt;
        if (interrupt.requested() && !is_first)
            break;
        frame.finished = some.finished;
        noise.add(some);
        sums.add(FrameSums(some), round.groups());
        made.end = round.end;
        if (interrupt.requested())
            break;
        result.relative_error = noise.relative_error(made);
        if (made.end == samples.end)
            break;
        if (result.relative_error && *result.relative_error < limits.noise) {
            result.end = SamplesMade::End::Noise;
            break;
        }
        const double seconds_per_sample = (limits.deadline.seconds_gone() - preparation) / made.count();
        round = next_round(samples, made.end, limits.deadline.seconds_left() / seconds_per_sample);
        if (round.count() == 0)
            result.end = SamplesMade::End::TimeLimit;
    }
    FrameSums all = sums.take();
    frame.guides = std::move(all.guides);
    frame.for_each([&](Aov aov, Picture &picture) {
        PartSums &part = *all.parts[index_of(aov)];
        part.samples = made;
        for (std::size_t i = 0; i < picture.pixels.size(); ++i)
            picture.pixels[i] = part.value(i);
        if (made.end == samples.end && !samples.is_whole())
            picture.part = std::move(part);
    });
    return result;
}

} // namespace vantor
