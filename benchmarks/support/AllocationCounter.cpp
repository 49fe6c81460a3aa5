#include "support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

// Replaces the allocation of the whole program: its counts are global, and below it there is only malloc.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables,cppcoreguidelines-no-malloc)

namespace {

std::atomic<std::size_t> allocations;
std::atomic<std::size_t> bytesInUse;
std::atomic<std::size_t> peak;

} // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocations.fetch_add(1, std::memory_order_relaxed);
    std::size_t const room = ::malloc_usable_size(memory);
    std::size_t const now = bytesInUse.fetch_add(room, std::memory_order_relaxed) + room;
    if (now > peak.load(std::memory_order_relaxed)) {
        peak.store(now, std::memory_order_relaxed);
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) {
        bytesInUse.fetch_sub(::malloc_usable_size(memory), std::memory_order_relaxed);
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    operator delete(memory);
}

// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables,cppcoreguidelines-no-malloc)

namespace harvlink::bench {

HeapUse CurrentHeapUse() {
    return {allocations.load(), bytesInUse.load(), peak.load()};
}

void ResetPeak() {
    peak = bytesInUse.load();
}

} // namespace harvlink::bench
