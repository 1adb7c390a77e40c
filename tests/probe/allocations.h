// The native allocations of the module's sources, counted, and failing on demand.
#pragma once

namespace allocations {

/// The n-th allocation from now that may return null does so, with errno ENOMEM; 0 lets all succeed again.
void fail(int n);

/// Allocations minus releases so far.
long outstanding();

} // namespace allocations
