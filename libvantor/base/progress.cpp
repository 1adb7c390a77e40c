// Progress: a line on the error stream that tells how far a pass is, when that stream is a terminal.
#include "libvantor/base/progress.h"

#include "libvantor/base/report.h"

#include <cmath>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace vantor {

namespace {

ProgressHandler &the_handler() {
    static ProgressHandler &only = *new ProgressHandler; // never destroyed, as scenes may outlive it
    return only;
}

} // namespace

void set_progress_handler(ProgressHandler handler) { the_handler() = std::move(handler); }

std::string time_text(double seconds) {
    const auto whole = static_cast<long>(std::lround(seconds));
    if (whole < 60)
        return std::to_string(whole) + " s";
    // Two units: a guess is no better than that.
    const long minutes = whole / 60;
    if (minutes < 60)
        return joined({std::to_string(minutes), " min ", std::to_string(whole % 60), " s"});
    return joined({std::to_string(minutes / 60), " h ", std::to_string(minutes % 60), " min"});
}

Progress::Progress(const char *pass, long steps) : name(pass), total(steps), is_shown(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    // Carriage return, and the terminal's "erase to the end of the line".
    if (has_line)
        std::fputs("\r\x1b[K", stderr);
}

void Progress::done(long steps) {
    steps_done.fetch_add(steps, std::memory_order_relaxed);
    const bool is_handled = static_cast<bool>(the_handler());
    if (!is_shown && !is_handled)
        return;

    // If another thread holds the lock, it prints a figure as new as this one.
    const std::unique_lock lock(printing, std::try_to_lock);
    if (!lock)
        return;
    const Clock::time_point now = Clock::now();
    if (now - printed < std::chrono::milliseconds(is_handled ? 20 : 200))
        return;
    printed = now;
    const double fraction = static_cast<double>(steps_done.load(std::memory_order_relaxed)) /
                            static_cast<double>(total.load(std::memory_order_relaxed));
    if (is_handled) {
        the_handler()(fraction);
        return;
    }

    has_line = true;
    const double seconds = std::chrono::duration<double>(now - start).count();
    const double left = seconds * (1 - fraction) / fraction;
    std::fprintf(stderr, "\rvantor: %s: %3.0f %%, %s left\x1b[K", name, 100 * fraction, time_text(left).c_str());
}

} // namespace vantor
