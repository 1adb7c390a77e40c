// Threads: those that passes run on.
#include "libvantor/base/threads.h"

#include "libvantor/base/report.h"

#include <atomic>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <pthread.h>
#include <stdexcept>
#include <string_view>
#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>

namespace vantor {

namespace {

// More than oneTBB takes where it starts.
constexpr std::size_t start_bytes = std::size_t{8} << 20;

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

[[noreturn]] void throw_no_thread(std::string_view why) {
    throw std::runtime_error(joined({"no thread could be started (", why, "), as when memory is short"}));
}

// What keeps oneTBB's threads alive between passes, so that they can be ended before a fork: a process that is forked
// off has only the thread that did so. OneTBB would count on the others there, and wait for ever for a lock that one of
// them held at that moment. Never destroyed: scenes may outlive it at the end of the process.
struct Keeper {
    std::mutex guard;
    tbb::task_scheduler_handle threads;
    std::atomic<bool> has_failed = false;
};
Keeper &keeper();

void before_fork() {
    keeper().guard.lock();
    // Of a thread that it could not start, oneTBB would wait for the end for ever.
    if (keeper().threads && !keeper().has_failed)
        tbb::finalize(keeper().threads, std::nothrow);
}
void after_fork() { keeper().guard.unlock(); }

Keeper &keeper() {
    static Keeper &only = []() -> Keeper & {
        pthread_atfork(before_fork, after_fork, after_fork);
        return *new Keeper;
    }();
    return only;
}

// Throws std::bad_alloc. Where memory ends while oneTBB starts, it may wait for ever for a lock of its own.
void check_room_to_start() { ::operator delete(::operator new(start_bytes)); }

void keep_threads() {
    const std::lock_guard lock(keeper().guard);
    if (!keeper().threads)
        keeper().threads = tbb::task_scheduler_handle(tbb::attach{});
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
        throw_no_thread(std::strerror(error));
    pthread_join(thread, nullptr);
    if (job.thrown)
        std::rethrow_exception(job.thrown);
}

void for_each_in_parallel(std::size_t count, const std::function<void(std::size_t)> &work) {
    tbb::parallel_for(std::size_t{0}, count, work);
}

Workers::Workers() {
    try {
        check_room_to_start();
        keep_threads();
        tbb::parallel_for(
            tbb::blocked_range<int>(0, 64), [](const tbb::blocked_range<int> &) {}, tbb::simple_partitioner());
    } catch (const std::exception &error) {
        keeper().has_failed = true;
        throw_no_thread(error.what());
    }
}

Workers::~Workers() {
    try {
        tbb::task_scheduler_handle of_this_thread(tbb::attach{});
        tbb::finalize(of_this_thread, std::nothrow);
    } catch (const std::exception &) {
        // No memory for the handle: the thread's part of oneTBB ends with the thread.
    }
}

} // namespace vantor
