// Threads: those that passes run on.
#pragma once

#include <cstddef>
#include <functional>

namespace vantor {

/// Does the work where there is enough stack for a pass: here, or else on a thread that it starts and waits for.
/// Scripts may call from threads with stacks as small as the system allows. What the work throws is thrown here.
void with_enough_stack(const std::function<void()> &work);

/// Calls work for each number below count, on as many threads as there are. What the work throws is thrown here.
void for_each_in_parallel(std::size_t count, const std::function<void(std::size_t)> &work);

/// Has oneTBB start its threads, if it has not yet. Throws std::bad_alloc if memory is short.
void start_workers();

/// Waits for the end of oneTBB's idle threads; of none while something else in the process uses oneTBB, too. A process
/// that is forked off has no threads but one: it would render on that alone, and wait for ever for a lock that another
/// thread held at that moment.
void end_workers() noexcept;

} // namespace vantor
