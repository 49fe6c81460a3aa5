#pragma once

#include <cstddef>

namespace harvlink::bench {

/// What the whole process has on the heap through operator new, in every library.
struct HeapUse {
    std::size_t allocations = 0; ///< since the start
    std::size_t bytes = 0; ///< in use now, as the allocator rounds them
    std::size_t peakBytes = 0; ///< most in use since the last ResetPeak
};

HeapUse CurrentHeapUse();
void ResetPeak();

} // namespace harvlink::bench
