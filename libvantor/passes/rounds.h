// Rounds: a pass that makes its samples a few at a time, so that it can stop in between.
#pragma once

#include "libvantor/base/interrupt.h"
#include "libvantor/film/frame_buffer.h"

#include <chrono>
#include <functional>
#include <limits>
#include <optional>

namespace vantor {

/// A time from which on nothing new is begun.
class Deadline {
  public:
    /// So many seconds from now; 0 for no limit.
    explicit Deadline(double seconds) : limit(seconds > 0 ? seconds : std::numeric_limits<double>::infinity()) {}

    double seconds_left() const { return limit - seconds_gone(); }
    double seconds_gone() const { return std::chrono::duration<double>(Clock::now() - start).count(); }

  private:
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    const double limit;
};

/// What ends a pass before it has made all of its samples.
struct RoundLimits {
    Deadline deadline;
    double noise = 0; ///< The relative error below which a picture is good enough; 0: never.
};

/// What a pass has made.
struct SamplesMade {
    enum class End {
        AllSamples, ///< That were asked for.
        TimeLimit,
        Noise,
        Interrupt,
    };

    SampleRange samples;
    End end = End::AllSamples;
    std::optional<double> relative_error{}; ///< If anybody asked, and there were enough samples to tell.
};

/// Gives the pixels of a frame some of their samples.
using RenderSamples = std::function<void(const SampleRange &samples, FrameBuffer &frame)>;

/// Renders the samples in rounds, each over the whole frame, as long as one more is likely to end in time and the
/// picture is not good enough; at least one. With all of them the frame is the same as in one pass, bit by bit. A round
/// that is interrupted does not count, unless it is the first. With a limit of noise the frame is a whole picture, and
/// has halves.
SamplesMade render_in_rounds(const RoundLimits &limits, const SampleRange &samples, const Interrupt &interrupt,
                             const RenderSamples &render, FrameBuffer &frame);

} // namespace vantor
