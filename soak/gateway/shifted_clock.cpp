// Shifts the clock of a running program: loaded before the C library (LD_PRELOAD), it adds the number of seconds in the file that
// HARVLINK_CLOCK_SHIFT names to the wall clock. The monotonic clock, by which time-outs count, stays as it is.

#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using Clock = int (*)(clockid_t, timespec*);

/// The driver of the soak writes the file while the program runs.
long long const volatile* MapShift() {
    char const* const name = std::getenv("HARVLINK_CLOCK_SHIFT");
    int const file = name != nullptr ? open(name, O_RDONLY | O_CLOEXEC) : -1;
    void* const memory = file >= 0 ? mmap(nullptr, sizeof(long long), PROT_READ, MAP_SHARED, file, 0) : MAP_FAILED;
    if (file >= 0) {
        close(file);
    }
    return memory != MAP_FAILED ? static_cast<long long const*>(memory) : nullptr;
}

} // namespace

// The names of the system begin with underscores.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" __attribute__((visibility("default"))) int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static auto const systemClock = reinterpret_cast<Clock>(dlsym(RTLD_NEXT, "clock_gettime"));
    static auto const* const shift = MapShift();
    int const result = systemClock(clock, time);
    if (result == 0 && clock == CLOCK_REALTIME && shift != nullptr) {
        time->tv_sec += static_cast<time_t>(*shift);
    }
    return result;
}
