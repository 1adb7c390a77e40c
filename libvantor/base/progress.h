// Progress: a line on the error stream that tells how far a pass is, when that stream is a terminal.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>

namespace vantor {

/// "12 s", "3 min 20 s" or "2 h 5 min"; of 0 seconds or more.
std::string time_text(double seconds);

/// Receives the fraction that is done, in place of the line on the error stream; an empty handler restores the line.
/// Must not be set during a pass.
using ProgressHandler = std::function<void(double fraction)>;
void set_progress_handler(ProgressHandler handler);

/// The line is wiped when the object goes. Any thread may call done().
class Progress {
  public:
    /// The pass is named as in messages.
    Progress(const char *pass, long steps);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// So many more steps are done, 1 or more.
    void done(long steps);

    /// So many more steps are to be done than was known; fewer if below 0.
    void expect(long steps) { total.fetch_add(steps, std::memory_order_relaxed); }

  private:
    using Clock = std::chrono::steady_clock;

    const char *const name;
    std::atomic<long> total;
    const bool is_shown;
    const Clock::time_point start = Clock::now();
    std::atomic<long> steps_done = 0;
    std::mutex printing;
    Clock::time_point printed = start; // guarded by printing
    bool has_line = false;             // likewise
};

} // namespace vantor
