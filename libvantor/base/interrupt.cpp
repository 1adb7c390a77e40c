// Interrupt: Ctrl-C during a pass.
#include "libvantor/base/interrupt.h"

#include <atomic>
#include <csignal>

namespace vantor {

namespace {

std::atomic<bool> was_requested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes it");

// What a test injects.
std::atomic<bool> counts_polls = false;
std::atomic<long> poll_count = 0;
std::atomic<long> interrupted_poll = 0;

struct sigaction previous;
bool is_installed = false;

void note_and_pass_on(int signal, siginfo_t *info, void *context) {
    was_requested.store(true, std::memory_order_relaxed);
    if (previous.sa_flags & SA_SIGINFO)
        previous.sa_sigaction(signal, info, context);
    else if (previous.sa_handler != SIG_DFL && previous.sa_handler != SIG_IGN)
        previous.sa_handler(signal);
}

bool has_default_action() { return !(previous.sa_flags & SA_SIGINFO) && previous.sa_handler == SIG_DFL; }
bool is_ignored() { return !(previous.sa_flags & SA_SIGINFO) && previous.sa_handler == SIG_IGN; }

} // namespace

Interrupt::Interrupt() {
    was_requested.store(false, std::memory_order_relaxed);
    is_installed = sigaction(SIGINT, nullptr, &previous) == 0 && !is_ignored();
    if (!is_installed)
        return;

    struct sigaction ours = {};
    ours.sa_sigaction = note_and_pass_on;
    ours.sa_mask = previous.sa_mask;
    ours.sa_flags = SA_SIGINFO | (previous.sa_flags & (SA_ONSTACK | SA_RESTART | SA_NODEFER));
    is_installed = sigaction(SIGINT, &ours, nullptr) == 0;
}

Interrupt::~Interrupt() {
    if (!is_installed)
        return;
    sigaction(SIGINT, &previous, nullptr);
    is_installed = false;
    if (was_requested.load(std::memory_order_relaxed) && has_default_action())
        std::raise(SIGINT);
}

bool Interrupt::requested() const {
    if (counts_polls.load(std::memory_order_relaxed) && ++poll_count == interrupted_poll) {
        std::raise(SIGINT);
        // The compiler does not know that the handler ran: it could move the read below before this line.
        std::atomic_signal_fence(std::memory_order_seq_cst);
    }
    return was_requested.load(std::memory_order_relaxed);
}

InterruptAtPoll::InterruptAtPoll(long number) {
    poll_count = 0;
    interrupted_poll = number;
    counts_polls = true;
}

InterruptAtPoll::~InterruptAtPoll() { counts_polls = false; }

long InterruptAtPoll::polls() const { return poll_count; }

} // namespace vantor
