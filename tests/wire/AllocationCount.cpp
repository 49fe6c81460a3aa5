#include "wire/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

} // namespace

std::size_t harvlink::test::AllocationsOfThisThread() {
    return allocations;
}

// The thread sanitizer of clang has its own operators, which cannot be replaced.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define HARVLINK_TEST_OPERATORS_ARE_TAKEN
#endif
#endif

#if defined(HARVLINK_TEST_OPERATORS_ARE_TAKEN)

bool harvlink::test::AllocationsAreCounted() {
    return false;
}

#else

bool harvlink::test::AllocationsAreCounted() {
    return true;
}

// All other forms of the operators call these.
void* operator new(std::size_t size) {
    ++allocations;
    void* const memory = std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

#endif
