// Rounds: a pass that makes its samples a few at a time, so that it can stop in between.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/film/frame_buffer.h"

#include <chrono>
#include <functional>

namespace vantor {

/// A time from which on nothing new is begun.
class Deadline {
  public:
    /// So many seconds from now.
    explicit Deadline(double seconds) : limit(seconds) {}

    double seconds_left() const { return limit - seconds_gone(); }
    double seconds_gone() const { return std::chrono::duration<double>(Clock::now() - start).count(); }

  private:
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const double limit;
};

/// Gives the pixels of a frame some of their samples.
using RenderSamples = std::function<void(const SampleRange &samples, FrameBuffer &frame)>;

/// Renders the samples in rounds, each over the whole frame, as long as one more is likely to end in time; at least
/// one. Returns the samples that the frame then has. All in time, it is the same as in one pass, bit by bit. A round
/// that is interrupted does not count, unless it is the first.
SampleRange render_until(const Deadline &deadline, const SampleRange &samples, const Interrupt &interrupt,
                         const RenderSamples &render, FrameBuffer &frame);

} // namespace vantor
