// Rounds: a pass that makes its samples a few at a time, so that it can stop in between.
#include "libvantor/integrators/rounds.h"

#include "libvantor/base/pairwise_sum.h"

#include <limits>

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

} // namespace

SampleRange render_until(const Deadline &deadline, const SampleRange &samples, const Interrupt &interrupt,
                         const RenderSamples &render, FrameBuffer &frame) {
    PairwiseSum<FrameSums> sums;
    const double preparation = deadline.seconds_gone();
    SampleRange made{samples.first, samples.first, samples.in_all};
    SampleRange round = next_round(samples, samples.first, std::numeric_limits<double>::infinity());
    while (round.count() > 0) {
        const bool is_first = made.count() == 0;
        FrameBuffer some = frame_like(frame, round);
        if (is_first)
            some.on_finished = frame.on_finished;
        render(round, some);
        if (interrupt.requested() && !is_first)
            break;
        frame.finished = some.finished;
        sums.add(FrameSums(some), round.groups());
        made.end = round.end;
        if (interrupt.requested() || made.end == samples.end)
            break;
        const double seconds_per_sample = (deadline.seconds_gone() - preparation) / made.count();
        round = next_round(samples, made.end, deadline.seconds_left() / seconds_per_sample);
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
    return made;
}

} // namespace vantor
