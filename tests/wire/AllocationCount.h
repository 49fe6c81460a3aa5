#pragma once

#include <cstddef>

namespace harvlink::test {

/// The number of heap allocations of this thread so far. It counts one thread only, because the scripted controller
/// allocates at the same time.
std::size_t AllocationsOfThisThread();

/// False in a build in which the operators cannot be replaced.
bool AllocationsAreCounted();

} // namespace harvlink::test
