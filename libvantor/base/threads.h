// Threads: those that passes run on.
#pragma once

#include <functional>

namespace vantor {

/// Does the work on a thread with a stack of a known size, and waits for it. Scripts may call from threads with stacks
/// as small as the system allows. What the work throws is thrown here.
void on_own_stack(const std::function<void()> &work);

/// Has oneTBB start its threads, if it has not yet. Throws std::bad_alloc if memory is short.
void start_workers();

} // namespace vantor
