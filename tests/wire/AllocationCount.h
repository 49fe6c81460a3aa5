#pragma once

#include <cstddef>

namespace harvlink::test {

/// How often this thread has taken memory from the heap so far. Of one thread only, because the scripted controller
/// allocates at the same time.
std::size_t AllocationsOfThisThread();

/// False in a build that does not let the operators be replaced.
bool AllocationsAreCounted();

} // namespace harvlink::test
