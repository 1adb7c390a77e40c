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

/// While this lives, oneTBB's threads work for a pass that is called from this thread. They wait for the next one, but
/// not in the way of a fork: the process and its fork start them anew.
class Workers {
  public:
    /// Throws std::runtime_error if memory is short. Inside Embree, oneTBB would end the process.
    Workers();
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;
};

} // namespace vantor
