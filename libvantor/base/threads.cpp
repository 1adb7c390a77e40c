// Threads: those that passes run on.
#include "libvantor/base/threads.h"

#include "libvantor/base/report.h"

#include <cstring>
#include <exception>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>

namespace vantor {

namespace {

// A pass takes some 100 KiB; with sanitizers, several times that.
constexpr std::ptrdiff_t enough_bytes = std::ptrdiff_t{1} << 20;
// As much as a main thread usually has. Only what is used takes memory.
constexpr std::size_t stack_bytes = std::size_t{8} << 20;

bool is_stack_enough() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return false;
    void *lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    // Stacks grow downwards.
    return static_cast<const char *>(__builtin_frame_address(0)) - static_cast<const char *>(lowest) >= enough_bytes;
}

struct Job {
    const std::function<void()> &work;
    std::exception_ptr thrown;
};

void *run(void *argument) {
    Job &job = *static_cast<Job *>(argument);
    try {
        job.work();
    } catch (...) {
        job.thrown = std::current_exception();
    }
    return nullptr;
}

} // namespace

void with_enough_stack(const std::function<void()> &work) {
    if (is_stack_enough())
        return work();
    Job job{work, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stack_bytes);
    pthread_t thread;
    const int error = pthread_create(&thread, &attributes, run, &job);
    pthread_attr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error(joined({"no thread could be started (", std::strerror(error), ")"}));
    pthread_join(thread, nullptr);
    if (job.thrown)
        std::rethrow_exception(job.thrown);
}

void for_each_in_parallel(std::size_t count, const std::function<void(std::size_t)> &work) {
    tbb::parallel_for(std::size_t{0}, count, work);
}

void start_workers() {
    tbb::parallel_for(
        tbb::blocked_range<int>(0, 64), [](const tbb::blocked_range<int> &) {}, tbb::simple_partitioner());
}

void end_workers() noexcept {
    try {
        tbb::task_scheduler_handle scheduler{tbb::attach{}};
        tbb::finalize(scheduler, std::nothrow);
    } catch (const std::exception &) {
        // No memory for the handle: they stay.
    }
}

} // namespace vantor
