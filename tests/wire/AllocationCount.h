#pragma once

#include <cstddef>

namespace harvlink::test {

/// How often this thread has taken memory from the heap so far. Of one thread only, because the scripted controller
/// allocates at the same time.
std::size_t AllocationsOfThisThread();

} // namespace harvlink::test
