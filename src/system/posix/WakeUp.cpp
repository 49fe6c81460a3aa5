#include "system/WakeUp.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/eventfd.h>
#endif

namespace harvlink {

#if defined(__linux__)

WakeUp::WakeUp() : readEnd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), writeEnd(readEnd) {}

#else

WakeUp::WakeUp() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) == 0) {
        for (int const end : ends) {
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
            ::fcntl(end, F_SETFL, O_NONBLOCK);
        }
        readEnd = ends[0];
        writeEnd = ends[1];
    }
}

#endif

WakeUp::~WakeUp() {
    if (writeEnd >= 0 && writeEnd != readEnd) {
        ::close(writeEnd);
    }
    if (readEnd >= 0) {
        ::close(readEnd);
    }
}

void WakeUp::Set() const {
    std::uint64_t const one = 1;
    [[maybe_unused]] auto const written = ::write(writeEnd, &one, sizeof(one)); // a full pipe is set already
}

void WakeUp::Clear() const {
    std::uint64_t value = 0;
    while (::read(readEnd, &value, sizeof(value)) > 0 && writeEnd != readEnd) {
    }
}

bool WakeUp::Wait(std::chrono::milliseconds time) const {
    using Milliseconds = decltype(time)::rep;
    pollfd waited{readEnd, POLLIN, 0};
    auto const bounded = std::clamp<Milliseconds>(time.count(), 0, std::numeric_limits<int>::max());
    return ::poll(&waited, 1, static_cast<int>(bounded)) == 1;
}

} // namespace harvlink
